#include "printer/page.h"

#include <cstring>

#include "device/reservation.h"
#include "printer/information.h"
#include "printer/status.h"
#include "protocol/requests.h"
#include "protocol/response_parser.h"
#include "protocol/responses.h"

namespace printer {

namespace {

using device::Reservation;

constexpr uint16_t maxCopies = ZPRUSB_MAX_COPIES;

bool isValidCopies(uint16_t copies) {
    return 1 <= copies && copies <= maxCopies;
}

/// The job number after the printer's last one; they run from 1 to 255.
bool readNextJobNumber(PrinterObject& printer, uint8_t& jobNumber) {
    uint8_t statusBytes[ZPRUSB_INFO_STATUS_BYTES_SIZE] = {};
    uint32_t length = sizeof statusBytes;
    if (!getPrinterInfo(printer, ZPRUSB_INFO_STATUS_BYTES, statusBytes, &length)) return false;
    jobNumber = statusBytes[0] == 255 ? 1 : static_cast<uint8_t>(statusBytes[0] + 1);
    return true;
}

void resetPageBuffer(device::WorkingBuffers& buffers) {
    buffers.pageFill = 0;
    if (buffers.page != nullptr) std::memset(buffers.page, 0xFF, device::WorkingBuffers::pageSize);
}

/// The last look before the page command. A request that cannot be sent stops nothing here: the page command
/// that follows shows whether the printer can be reached.
bool isReadyForPage(PrinterObject& printer, uint16_t* resultCode) {
    if (!protocol::sendGetStatus(printer.writer, resultCode)) return true;
    protocol::Answer answer;
    uint16_t code = ZPRUSB_SUCCESS;
    if (!protocol::receiveWholeAnswer(printer.reader, answer, &code)) {
        return device::fail(protocol::foldAnswerErrors(code), resultCode);
    }
    if (answer.payload()[protocol::statusPayload::firstFlag] != 0)
        return device::fail(ZPRUSB_CONDITION_2100, resultCode);
    return true;
}

/// The steps that all pages share, on a printer that has been reserved where it has to be.
/// @param send writes the page command.
template <class SendPageCommand>
bool beginPage(PrinterObject& printer, uint16_t* pageId, uint16_t* resultCode, SendPageCommand send) {
    if (!isValidCopies(printer.page.copies)) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    if (!queryStatus(printer, resultCode)) return false;
    uint8_t jobNumber = 0;
    if (!readNextJobNumber(printer, jobNumber)) return device::fail(ZPRUSB_COMMUNICATION, resultCode);
    printer.page.pageId = static_cast<uint16_t>(printer.deviceIndex * 0x100 + jobNumber);
    if (pageId != nullptr) *pageId = printer.page.pageId;
    resetPageBuffer(printer.buffers);
    return isReadyForPage(printer, resultCode) && send() && protocol::receiveAck(printer.reader, resultCode);
}

/// Reserves the printer, until the end of the page if it begins.
template <class SendPageCommand>
bool beginReservedPage(PrinterObject& printer, uint16_t* pageId, uint16_t* resultCode, SendPageCommand send) {
    Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    const bool begun = beginPage(printer, pageId, resultCode, send);
    if (begun) reservation.keepForPage(printer);
    return begun;
}

}  // namespace

bool setCopies(PrinterObject& printer, uint16_t copies, uint16_t* resultCode) {
    if (!isValidCopies(copies)) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    printer.page.copies = copies;
    device::setResult(resultCode, ZPRUSB_SUCCESS);
    return true;
}

bool startPage(PrinterObject& printer, uint16_t* pageId, uint16_t* resultCode) {
    if (pageId != nullptr) *pageId = 0;
    return beginReservedPage(printer, pageId, resultCode,
                             [&] { return protocol::sendPrint(printer.writer, printer.page, resultCode); });
}

bool startLongPage(PrinterObject& printer, uint16_t* pageId, uint8_t sectionIndex, uint16_t* resultCode) {
    if (pageId != nullptr) *pageId = 0;
    if (sectionIndex > ZPRUSB_MAX_SECTION) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    const auto send = [&] {
        return protocol::sendPrintLong(printer.writer, printer.page, sectionIndex, resultCode);
    };
    if (sectionIndex == 0) return beginReservedPage(printer, pageId, resultCode, send);
    const bool begun = beginPage(printer, pageId, resultCode, send);
    if (!begun) device::releaseSection(printer);  // the whole print that this section belongs to ends with it
    return begun;
}

bool endPage(PrinterObject& printer, uint16_t* resultCode) {
    printer.page.copies = 1;
    device::setResult(resultCode, ZPRUSB_SUCCESS);
    device::releasePage(printer);
    return true;
}

}  // namespace printer
