#include "printer/status.h"

#include "device/reservation.h"
#include "device/selection.h"
#include "protocol/requests.h"
#include "protocol/responses.h"

namespace printer {

namespace {

bool exchangeStatus(device::PipeWriter& writer, device::PipeReader& reader, uint16_t* resultCode) {
    return protocol::sendGetStatus(writer, resultCode) && protocol::receiveStatus(reader, resultCode);
}

/// The status of a device that the object need not have selected. The object isn't touched: while this waits
/// for a busy printer, a page that another thread has open with the same object goes on.
uint16_t statusOf(uint8_t number) {
    uint16_t code = ZPRUSB_NO_PRINTER;
    const std::atomic<uint8_t> index{number};
    const device::Reservation reservation = device::acquireDevice(index, &code);
    if (!reservation) return code;
    const device::DeviceEntry& entry = device::deviceTable[number];
    device::PipeWriter writer{entry.writePipe};
    device::PipeReader reader{entry.readPipe};
    exchangeStatus(writer, reader, &code);
    return code;
}

}  // namespace

bool queryStatus(PrinterObject& printer, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    return reservation && exchangeStatus(printer.writer, printer.reader, resultCode);
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
        results[i] = statusOf(printerList[i]);
        anyReady = anyReady || results[i] == ZPRUSB_SUCCESS;
    }
    const uint8_t selected = printer.deviceIndex;
    const uint8_t index = selected < device::deviceCount ? selected : lastPresent;
    if (index < device::deviceCount) device::usePrinter(printer, index);
    return anyReady;
}

}  // namespace printer
