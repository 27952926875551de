#include "printer/page.h"

#include <cstring>

#include "device/reservation.h"
#include "printer/status.h"
#include "protocol/answer_codes.h"
#include "protocol/exchange.h"
#include "protocol/numbers.h"
#include "protocol/requests.h"

namespace printer {

namespace {

using device::done;
using device::failure;
using device::Reservation;
using protocol::Answer;
using protocol::Request;
namespace statusPayload = protocol::statusPayload;

/// The request that starts a page.
using PageCommand = Request (*)(const device::PageParameters& page);

bool isValidCopies(uint16_t copies) {
    return 1 <= copies && copies <= ZPRUSB_MAX_COPIES;
}

/// The job number after the printer's last one; they run from 1 to 255.
Result readNextJobNumber(PrinterObject& printer, uint8_t& jobNumber) {
    const Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    const Result status = queryStatus(printer);
    if (protocol::isUnreachable(status.code)) return status;
    Answer answer;
    const Result result = protocol::fetchStatus(printer.connection, answer);
    const uint8_t last = answer.payload()[statusPayload::jobNumber];
    jobNumber = last == protocol::lastJobNumber ? 1 : static_cast<uint8_t>(last + 1);
    return result;
}

void resetPageBuffer(device::WorkingBuffers& buffers) {
    buffers.pageFill = 0;
    if (buffers.page != nullptr) std::memset(buffers.page, 0xFF, device::WorkingBuffers::pageSize);
}

/// The last look before the page command. A request that cannot be sent stops nothing here: the page command
/// that follows shows whether the printer can be reached.
Result checkReadyForPage(PrinterObject& printer) {
    if (!protocol::send(printer.connection, protocol::request::getStatus())) return done;
    Answer answer;
    const Result received = protocol::receiveStatus(printer.connection, answer);
    if (!received) return protocol::foldAnswerErrors(received);
    return answer.payload()[statusPayload::firstFlag] == 0 ? done : failure(ZPRUSB_CONDITION_2100);
}

/// The steps that all pages share, on a printer that has been reserved where it has to be.
Result beginPage(PrinterObject& printer, uint16_t* pageId, PageCommand command) REQUIRES(device::apiLock) {
    if (!isValidCopies(printer.page.copies)) return failure(ZPRUSB_BAD_ARGUMENT);
    const Result status = queryStatus(printer);
    if (!status) return status;
    uint8_t jobNumber = 0;
    if (!readNextJobNumber(printer, jobNumber)) return failure(ZPRUSB_COMMUNICATION);
    printer.page.pageId = static_cast<uint16_t>(printer.deviceIndex * 0x100 + jobNumber);
    if (pageId != nullptr) *pageId = printer.page.pageId;
    resetPageBuffer(printer.buffers);
    const Result ready = checkReadyForPage(printer);
    return ready ? protocol::perform(printer.connection, command(printer.page)) : ready;
}

/// Reserves the printer, until the end of the page if it begins.
Result beginReservedPage(PrinterObject& printer, uint16_t* pageId, PageCommand command)
    REQUIRES(device::apiLock) {
    Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    const Result begun = beginPage(printer, pageId, command);
    if (begun) reservation.keepForPage(printer);
    return begun;
}

/// The printer is that of the whole print, which ends with a section that fails.
Result beginSection(PrinterObject& printer, uint16_t* pageId) REQUIRES(device::apiLock) {
    const Result begun = beginPage(printer, pageId, protocol::request::printLong);
    if (!begun) device::releaseSection(printer);
    return begun;
}

}  // namespace

Result setCopies(PrinterObject& printer, uint16_t copies) {
    if (!isValidCopies(copies)) return failure(ZPRUSB_BAD_ARGUMENT);
    printer.page.copies = copies;
    return done;
}

Result startPage(PrinterObject& printer, uint16_t* pageId) {
    if (pageId != nullptr) *pageId = 0;
    return beginReservedPage(printer, pageId, protocol::request::print);
}

Result startLongPage(PrinterObject& printer, uint16_t* pageId, uint8_t sectionIndex) {
    if (pageId != nullptr) *pageId = 0;
    if (sectionIndex > ZPRUSB_MAX_SECTION) return failure(ZPRUSB_BAD_ARGUMENT);
    printer.page.sectionIndex = sectionIndex;
    return sectionIndex == 0 ? beginReservedPage(printer, pageId, protocol::request::printLong)
                             : beginSection(printer, pageId);
}

Result writeData(PrinterObject& printer, const uint8_t* data, const uint32_t* length) {
    if (length == nullptr || (data == nullptr && *length != 0)) return failure(ZPRUSB_BAD_ARGUMENT);
    return device::directWriteInChunks(printer.connection.writer, data, *length);
}

Result endPage(PrinterObject& printer) {
    printer.page.copies = 1;
    device::releasePage(printer);
    return done;
}

}  // namespace printer
