/// Entry points that send one command each and drop its answer: service looks at the traffic, not at the
/// result.
#include "api/entry_frame.h"
#include "api/internal.h"
#include "device/reservation.h"
#include "protocol/exchange.h"
#include "protocol/requests.h"

using api::lockFreeFrame;
using device::PrinterObject;
using device::Result;
namespace request = protocol::request;

namespace {

using Send = Result (*)(device::Connection& connection, const protocol::Request& request);

template <Send send>
Result sendAndDrop(PrinterObject& printer, const protocol::Request& request) {
    const Result sent = send(printer.connection, request);
    return sent ? protocol::dropAnswer(printer.connection) : sent;
}

template <Send send>
Result reserved(PrinterObject& printer, const protocol::Request& request) {
    const device::Reservation reservation = device::reserve(printer);
    return reservation ? sendAndDrop<send>(printer, request) : reservation.result();
}

uint32_t command(uint16_t* resultCode, const protocol::Request& request) {
    return api::call(lockFreeFrame, resultCode, reserved<protocol::send>, request);
}

}  // namespace

uint32_t zprusb_cmdFlashLed(uint16_t* resultCode) {
    return command(resultCode, request::flashLed());
}

uint32_t zprusb_cmdReset(uint8_t kind, uint16_t* resultCode) {
    return command(resultCode, request::reset(kind));
}

uint32_t zprusb_cmdGetStatus(uint16_t* resultCode) {
    return command(resultCode, request::getStatus());
}

uint32_t zprusb_cmdGetMediaInfo(uint16_t* resultCode) {
    return command(resultCode, request::getMediaInfo());
}

uint32_t zprusb_cmdSelfDiagnosis(uint8_t kind, uint8_t p1, uint8_t p2, uint16_t* resultCode) {
    return api::call(lockFreeFrame, resultCode, sendAndDrop<protocol::send>,
                     request::selfDiagnosis(kind, p1, p2));
}

uint32_t zprusb_cmdGetSelfDiagnosisResults(uint16_t* resultCode) {
    return command(resultCode, request::getSelfDiagnosisResults());
}

uint32_t zprusb_cmdGetFirmwareInfo(uint8_t component, uint16_t* resultCode) {
    return command(resultCode, request::getFirmwareInfo(component));
}

uint32_t zprusb_cmdGetEepromMaintenance(uint8_t address, uint8_t count, uint16_t* resultCode) {
    return command(resultCode, request::getEepromMaintenance(address, count));
}

uint32_t zprusb_cmdSetEepromMaintenance(uint8_t address, uint8_t count, const uint8_t* data,
                                        uint16_t* resultCode) {
    return command(resultCode, request::setEepromMaintenance(address, count, data));
}

uint32_t zprusb_cmdPrint(uint16_t jobNumber, uint16_t copies, uint16_t width, uint16_t length,
                         uint8_t mediaCode, uint8_t option, uint8_t byte9, uint16_t* resultCode) {
    const request::ExplicitPage page{jobNumber, copies, width, length, mediaCode, option, byte9};
    return api::call(lockFreeFrame, resultCode, reserved<protocol::sendDirectly>, request::printExplicit(page));
}

uint32_t zprusb_cmdUpdate(uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode) {
    return command(resultCode, request::update(target, start, length));
}

uint32_t zprusb_cmdGetPrinterUniqueString(uint16_t* resultCode) {
    return command(resultCode, request::getPrinterUniqueString());
}

uint32_t zprusb_cmdSetPrinterUniqueString(const uint8_t* data, uint8_t count, uint16_t* resultCode) {
    return command(resultCode, request::setPrinterUniqueString(data, count));
}

uint32_t zprusb_cmdReserved(uint8_t, uint16_t* resultCode) {
    return api::call(lockFreeFrame, resultCode, [](PrinterObject&) { return Result{}; });
}
