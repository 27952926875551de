/// Entry points that act on a printer: each is its frame and its operation.
#include <algorithm>

#include "api/entry_frame.h"
#include "printer/control.h"
#include "printer/information.h"
#include "printer/maintenance_memory.h"
#include "printer/media.h"
#include "printer/page.h"
#include "printer/raw.h"
#include "printer/settings.h"
#include "printer/status.h"

using api::lockedFrame;
using api::lockFreeFrame;
using api::onPrinter;
using api::retryingFrame;
using api::run;
using device::PrinterObject;

uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length) {
    const uint32_t capacity = length != nullptr ? *length : 0;
    return onPrinter(retryingFrame, nullptr, [&](PrinterObject& printer) {
        if (length != nullptr) *length = capacity;  // a failed attempt may have set it to 0
        return printer::getPrinterInfo(printer, tag, buffer, length);
    });
}

uint32_t zprusb_setPrinterInfo(uint16_t tag, const uint8_t* data, const uint32_t* length,
                               uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::setPrinterInfo, tag, data, length);
}

uint32_t zprusb_status(uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::queryStatus);
}

uint32_t zprusb_statusAll(const uint8_t* printerList, uint16_t* results) {
    if (printerList == nullptr || results == nullptr) return 0;
    uint16_t code = ZPRUSB_SUCCESS;
    const uint32_t anyReady = onPrinter(lockedFrame, &code, [&](PrinterObject& printer) {
        return printer::queryStatusOfAll(printer, printerList, results);
    });
    if (code == ZPRUSB_NO_OBJECT) std::fill_n(results, printer::lengthOfPrinterList(printerList), code);
    return anyReady;
}

uint32_t zprusb_checkMediaInfo(uint8_t mediaCode, uint32_t width, uint32_t length, uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::checkMediaInfo, mediaCode, width, length);
}

uint32_t zprusb_resetCounter(uint8_t counterNumber, uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::resetCounter, counterNumber);
}

uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode) {
    return run(lockFreeFrame, resultCode, printer::setCopies, copies);
}

uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::startPage, pageId);
}

uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode) {
    return run(retryingFrame, resultCode, printer::startLongPage, pageId, sectionIndex);
}

uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode) {
    return run(lockedFrame, resultCode, printer::writeRaw, data, length);
}

uint32_t zprusb_endpage(uint16_t* resultCode) {
    return run(lockFreeFrame, resultCode, printer::endPage);
}

uint32_t zprusb_blinkLED(uint16_t* resultCode) {
    return run(lockedFrame, resultCode, printer::blinkLed);
}

uint32_t zprusb_resetPrinter(uint16_t* resultCode) {
    return run(lockedFrame, resultCode, printer::resetPrinter);
}
