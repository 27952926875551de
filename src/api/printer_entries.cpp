/// Entry points that act on a printer: each is its frame and its operation.
#include <algorithm>

#include "api/entry_frame.h"
#include "printer/actions.h"
#include "printer/information.h"
#include "printer/maintenance_memory.h"
#include "printer/media.h"
#include "printer/page.h"
#include "printer/settings.h"
#include "printer/status.h"

using api::call;
using api::lockedFrame;
using api::lockFreeFrame;
using api::retryingFrame;
using device::PrinterObject;
using device::Result;

uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length) {
    const uint32_t capacity = length != nullptr ? *length : 0;
    return call(retryingFrame, nullptr, [&](PrinterObject& printer) {
        if (length != nullptr) *length = capacity;  // a failed attempt may have set it to 0
        return Result{printer::getPrinterInfo(printer, tag, buffer, length)};
    });
}

uint32_t zprusb_setPrinterInfo(uint16_t tag, const uint8_t* data, const uint32_t* length,
                               uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::setPrinterInfo, tag, data, length);
}

uint32_t zprusb_status(uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::queryStatus);
}

uint32_t zprusb_statusAll(const uint8_t* printerList, uint16_t* results) {
    if (printerList == nullptr || results == nullptr) return 0;
    const api::LockedEntryGuard guard;
    const api::ObjectUse object(api::findThreadSlot());
    if (object) return printer::queryStatusOfAll(*object, printerList, results);
    std::fill_n(results, printer::lengthOfPrinterList(printerList), uint16_t{ZPRUSB_NO_OBJECT});
    return 0;
}

uint32_t zprusb_checkMediaInfo(uint8_t mediaCode, uint32_t width, uint32_t length, uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::checkMediaInfo, mediaCode, width, length);
}

uint32_t zprusb_resetCounter(uint8_t counterNumber, uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::resetCounter, counterNumber);
}

uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::setCopies, copies);
}

uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::startPage, pageId);
}

uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode) {
    return call(retryingFrame, resultCode, printer::startLongPage, pageId, sectionIndex);
}

uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode) {
    return call(lockedFrame, resultCode, printer::writeData, data, length);
}

uint32_t zprusb_endpage(uint16_t* resultCode) {
    return call(lockFreeFrame, resultCode, printer::endPage);
}

uint32_t zprusb_blinkLED(uint16_t* resultCode) {
    return call(lockedFrame, resultCode, printer::blinkLed);
}

uint32_t zprusb_resetPrinter(uint16_t* resultCode) {
    return call(lockedFrame, resultCode, printer::resetPrinter);
}
