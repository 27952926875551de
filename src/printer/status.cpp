#include "printer/status.h"

#include "device/reservation.h"
#include "device/selection.h"
#include "protocol/exchange.h"

namespace printer {

using device::Reservation;

namespace {

/// The status of a device that the object need not have selected. The object isn't touched: while this waits
/// for a busy printer, a page that another thread has open with the same object goes on.
Result statusOf(uint8_t device) REQUIRES(device::apiLock) {
    const std::atomic<uint8_t> index{device};
    const Reservation reservation = device::reserve(index);
    if (!reservation) return reservation.result();
    const device::DeviceEntry& entry = device::deviceTable[device];
    device::Connection connection{{entry.writePipe}, {entry.readPipe}};
    return protocol::checkStatus(connection);
}

}  // namespace

Result queryStatus(PrinterObject& printer) {
    const Reservation reservation = device::reserve(printer);
    return reservation ? protocol::checkStatus(printer.connection) : reservation.result();
}

uint32_t lengthOfPrinterList(const uint8_t* printerList) {
    uint32_t length = 0;
    while (length < device::deviceCount && printerList[length] != ZPRUSB_LIST_END) ++length;
    return length;
}

bool queryStatusOfAll(PrinterObject& printer, const uint8_t* printerList, uint16_t* results) {
    uint8_t lastPresent = printer.deviceIndex;
    bool anyReady = false;
    const uint32_t length = lengthOfPrinterList(printerList);
    for (uint32_t i = 0; i < length; ++i) {
        if (device::openEntry(printerList[i]) != nullptr) lastPresent = printerList[i];
        results[i] = statusOf(printerList[i]).code;
        anyReady = anyReady || results[i] == ZPRUSB_SUCCESS;
    }
    const uint8_t selected = printer.deviceIndex;
    const uint8_t index = selected < device::deviceCount ? selected : lastPresent;
    if (index < device::deviceCount) device::usePrinter(printer, index);
    return anyReady;
}

}  // namespace printer
