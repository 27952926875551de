#include "printer/status.h"

#include "device/reservation.h"
#include "device/selection.h"
#include "protocol/requests.h"
#include "protocol/responses.h"

namespace printer {

bool queryStatus(PrinterObject& printer, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    return protocol::sendGetStatus(printer.writer, resultCode) &&
           protocol::receiveStatus(printer.reader, resultCode);
}

uint32_t lengthOfPrinterList(const uint8_t* printerList) {
    uint32_t length = 0;
    while (length < device::deviceCount && printerList[length] != ZPRUSB_LIST_END) ++length;
    return length;
}

bool queryStatusOfAll(PrinterObject& printer, const uint8_t* printerList, uint16_t* results) {
    const uint8_t formerIndex = printer.deviceIndex;
    bool anyReady = false;
    const uint32_t length = lengthOfPrinterList(printerList);
    for (uint32_t i = 0; i < length; ++i) {
        uint16_t code = ZPRUSB_NO_PRINTER;
        if (device::openEntry(printerList[i]) != nullptr) {
            device::usePrinter(printer, printerList[i]);
            queryStatus(printer, &code);
        }
        results[i] = code;
        anyReady = anyReady || code == ZPRUSB_SUCCESS;
    }
    if (formerIndex < device::deviceCount) device::usePrinter(printer, formerIndex);
    return anyReady;
}

}  // namespace printer
