/// Entry points that send one command each and drop its answer: service looks at the traffic, not at the
/// result.
#include "api/entry_frame.h"
#include "api/internal.h"
#include "device/reservation.h"
#include "protocol/requests.h"
#include "protocol/responses.h"

using api::lockFreeFrame;
using api::onPrinter;
using device::PipeWriter;
using device::PrinterObject;

namespace {

/// Sends a command and reads any answer.
/// @param send the builder of the command, called with these values and the result code.
template <class... Parameters, class... Values>
bool sendAndDrop(PrinterObject& printer, uint16_t* resultCode, bool (*send)(PipeWriter&, Parameters...),
                 const Values&... values) {
    return send(printer.writer, values..., resultCode) && protocol::dropAnswer(printer.reader, resultCode);
}

/// The same in its frame, with the printer reserved.
template <class... Parameters, class... Values>
uint32_t command(uint16_t* resultCode, bool (*send)(PipeWriter&, Parameters...), const Values&... values) {
    return onPrinter(lockFreeFrame, resultCode, [&](PrinterObject& printer) {
        const device::Reservation reservation = device::acquireDevice(printer, resultCode);
        return reservation && sendAndDrop(printer, resultCode, send, values...);
    });
}

}  // namespace

uint32_t zprusb_cmdFlashLed(uint16_t* resultCode) {
    return command(resultCode, protocol::sendFlashLed);
}

uint32_t zprusb_cmdReset(uint8_t kind, uint16_t* resultCode) {
    return command(resultCode, protocol::sendReset, kind);
}

uint32_t zprusb_cmdGetStatus(uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetStatus);
}

uint32_t zprusb_cmdGetMediaInfo(uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetMediaInfo);
}

uint32_t zprusb_cmdSelfDiagnosis(uint8_t kind, uint8_t p1, uint8_t p2, uint16_t* resultCode) {
    return onPrinter(lockFreeFrame, resultCode, [&](PrinterObject& printer) {  // without a reservation
        return sendAndDrop(printer, resultCode, protocol::sendSelfDiagnosis, kind, p1, p2);
    });
}

uint32_t zprusb_cmdGetSelfDiagnosisResults(uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetSelfDiagnosisResults);
}

uint32_t zprusb_cmdGetFirmwareInfo(uint8_t component, uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetFirmwareInfo, component);
}

uint32_t zprusb_cmdGetEepromMaintenance(uint8_t address, uint8_t count, uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetEepromMaintenance, address, count);
}

uint32_t zprusb_cmdSetEepromMaintenance(uint8_t address, uint8_t count, const uint8_t* data,
                                        uint16_t* resultCode) {
    return command(resultCode, protocol::sendSetEepromMaintenance, address, count, data);
}

uint32_t zprusb_cmdPrint(uint16_t jobNumber, uint16_t copies, uint16_t width, uint16_t length,
                         uint8_t mediaCode, uint8_t option, uint8_t byte9, uint16_t* resultCode) {
    const protocol::ExplicitPage page{jobNumber, copies, width, length, mediaCode, option, byte9};
    return command(resultCode, protocol::sendPrintExplicit, page);
}

uint32_t zprusb_cmdUpdate(uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode) {
    return command(resultCode, protocol::sendUpdate, target, start, length);
}

uint32_t zprusb_cmdGetPrinterUniqueString(uint16_t* resultCode) {
    return command(resultCode, protocol::sendGetPrinterUniqueString);
}

uint32_t zprusb_cmdSetPrinterUniqueString(const uint8_t* data, uint8_t count, uint16_t* resultCode) {
    return command(resultCode, protocol::sendSetPrinterUniqueString, data, count);
}

uint32_t zprusb_cmdReserved(uint8_t, uint16_t* resultCode) {
    return onPrinter(lockFreeFrame, resultCode, [](PrinterObject&) { return false; });
}
