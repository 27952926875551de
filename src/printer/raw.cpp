#include "printer/raw.h"

#include <algorithm>

#include "device/reservation.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

constexpr uint32_t collectionSize = ZPRUSB_MAINTENANCE_READ_SIZE;

/// Appends to the collection what fits.
/// @return whether everything did.
bool append(const uint8_t* bytes, uint32_t count, uint8_t* collection, uint32_t& collected) {
    const uint32_t fitting = std::min(count, collectionSize - collected);
    std::copy_n(bytes, fitting, collection + collected);
    collected += fitting;
    return fitting == count;
}

}  // namespace

bool writeRaw(PrinterObject& printer, const uint8_t* data, const uint32_t* length, uint16_t* resultCode) {
    if (length == nullptr || (data == nullptr && *length != 0)) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    return device::directWriteInChunks(printer.writer, data, *length, resultCode);
}

bool transferRaw(PrinterObject& printer, const uint8_t* data, uint32_t length, uint8_t* out, uint32_t* outCount,
                 uint16_t* resultCode) {
    if (data == nullptr || out == nullptr || outCount == nullptr) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    return device::directWrite(printer.writer, data, length, resultCode) &&
           device::directRead(printer.reader, out, *outCount, resultCode);
}

bool readRaw(PrinterObject& printer, uint8_t* out, uint16_t* resultCode) {
    if (out == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    uint32_t collected = 0;
    bool whole = true;
    for (;;) {
        uint8_t piece[device::directReadCapacity];
        uint32_t count = 0;
        uint16_t code = ZPRUSB_SUCCESS;
        if (!device::lengthPrefixedRead(printer.reader, piece, count, &code)) {
            return device::fail(ZPRUSB_COMMUNICATION, resultCode);
        }
        const bool fits = append(piece, count, out, collected);
        whole = whole && fits && code == ZPRUSB_SUCCESS;
        if (count > 0 && piece[count - 1] == 0) break;
    }
    device::setResult(resultCode, whole ? ZPRUSB_SUCCESS : ZPRUSB_COMMUNICATION);
    return true;
}

}  // namespace printer
