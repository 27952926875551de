/// Entry points that act on a printer: each is its frame and its operation.
#include <algorithm>

#include "api/entry_frame.h"
#include "printer/information.h"
#include "printer/media.h"
#include "printer/page.h"
#include "printer/status.h"

using api::lockedFrame;
using api::lockFreeFrame;
using api::onPrinter;
using api::retryingFrame;
using device::PrinterObject;

namespace {

/// For operations that this version does not have yet.
uint32_t refuse(const api::Frame& frame, uint16_t* resultCode) {
    return onPrinter(frame, resultCode,
                     [&](PrinterObject&) { return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode); });
}

}  // namespace

uint32_t zprusb_getPrinterInfo(uint16_t tag, uint8_t* buffer, uint32_t* length) {
    const uint32_t capacity = length != nullptr ? *length : 0;
    return onPrinter(retryingFrame, nullptr, [&](PrinterObject& printer) {
        if (length != nullptr) *length = capacity;  // a failed attempt may have set it to 0
        return printer::getPrinterInfo(printer, tag, buffer, length);
    });
}

uint32_t zprusb_setPrinterInfo(uint16_t, const uint8_t*, const uint32_t*, uint16_t* resultCode) {
    return refuse(retryingFrame, resultCode);
}

uint32_t zprusb_status(uint16_t* resultCode) {
    return onPrinter(retryingFrame, resultCode,
                     [&](PrinterObject& printer) { return printer::queryStatus(printer, resultCode); });
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
    return onPrinter(retryingFrame, resultCode, [&](PrinterObject& printer) {
        return printer::checkMediaInfo(printer, mediaCode, width, length, resultCode);
    });
}

uint32_t zprusb_resetCounter(uint8_t, uint16_t* resultCode) {
    return refuse(retryingFrame, resultCode);
}

uint32_t zprusb_copies(uint16_t copies, uint16_t* resultCode) {
    return onPrinter(lockFreeFrame, resultCode,
                     [&](PrinterObject& printer) { return printer::setCopies(printer, copies, resultCode); });
}

uint32_t zprusb_startpage(uint16_t* pageId, uint16_t* resultCode) {
    return onPrinter(retryingFrame, resultCode,
                     [&](PrinterObject& printer) { return printer::startPage(printer, pageId, resultCode); });
}

uint32_t zprusb_startpagelong(uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode) {
    return onPrinter(retryingFrame, resultCode, [&](PrinterObject& printer) {
        return printer::startLongPage(printer, pageId, sectionIndex, resultCode);
    });
}

uint32_t zprusb_write(const uint8_t* data, const uint32_t* length, uint16_t* resultCode) {
    return onPrinter(lockedFrame, resultCode, [&](PrinterObject& printer) {
        return printer::writePage(printer, data, length, resultCode);
    });
}

uint32_t zprusb_endpage(uint16_t* resultCode) {
    return onPrinter(lockFreeFrame, resultCode,
                     [&](PrinterObject& printer) { return printer::endPage(printer, resultCode); });
}

uint32_t zprusb_blinkLED(uint16_t* resultCode) {
    return refuse(lockedFrame, resultCode);
}

uint32_t zprusb_resetPrinter(uint16_t* resultCode) {
    return refuse(lockedFrame, resultCode);
}
