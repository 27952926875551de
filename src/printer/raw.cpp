#include "printer/raw.h"

#include <algorithm>

#include "device/reservation.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

using device::failure;

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

Result transferRaw(PrinterObject& printer, const uint8_t* data, uint32_t length, uint8_t* out,
                   uint32_t* outCount) {
    if (data == nullptr || out == nullptr || outCount == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    const Result sent = device::directWrite(printer.connection.writer, data, length);
    return sent ? device::directRead(printer.connection.reader, out, *outCount) : sent;
}

Result readRaw(PrinterObject& printer, uint8_t* out) {
    if (out == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    uint32_t collected = 0;
    bool whole = true;
    for (;;) {
        uint8_t piece[device::directReadCapacity];
        uint32_t count = 0;
        const Result read = device::lengthPrefixedRead(printer.connection.reader, piece, count);
        if (!read) return read;
        const bool fits = append(piece, count, out, collected);
        whole = whole && fits && read.code == ZPRUSB_SUCCESS;
        if (count > 0 && piece[count - 1] == 0) break;
    }
    return {true, whole ? uint16_t{ZPRUSB_SUCCESS} : uint16_t{ZPRUSB_COMMUNICATION}};
}

}  // namespace printer
