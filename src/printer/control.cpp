#include "printer/control.h"

#include "device/reservation.h"
#include "printer/status.h"
#include "protocol/requests.h"
#include "protocol/response_parser.h"
#include "protocol/responses.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

constexpr uint8_t resetWholePrinter = 3;
constexpr uint8_t resetToneCurves = 4;
constexpr uint8_t firstToneCurveTarget = 3;
constexpr uint8_t toneCurves = 2;

/// A printer that reports an error still gets the command; one that can't be reached doesn't.
template <class Send>
bool control(PrinterObject& printer, uint16_t* resultCode, Send send) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    uint16_t status = ZPRUSB_SUCCESS;
    queryStatus(printer, &status);
    const bool done = !protocol::isUnreachable(status) && send(printer.writer) &&
                      protocol::receiveAck(printer.reader, resultCode);
    return done || device::fail(ZPRUSB_COMMUNICATION, resultCode);
}

bool writeToneCurve(PrinterObject& printer, uint8_t target, const uint8_t* data, uint16_t* resultCode) {
    return protocol::sendUpdate(printer.writer, target, 0, ZPRUSB_TONE_CURVE_SIZE, resultCode) &&
           protocol::receiveAck(printer.reader, resultCode) &&
           device::directWriteInChunks(printer.writer, data, ZPRUSB_TONE_CURVE_SIZE, resultCode);
}

bool forgetToneCurves(PrinterObject& printer, uint16_t* resultCode) {
    return protocol::sendReset(printer.writer, resetToneCurves, resultCode) &&
           protocol::receiveAck(printer.reader, resultCode);
}

}  // namespace

bool blinkLed(PrinterObject& printer, uint16_t* resultCode) {
    return control(printer, resultCode,
                   [&](auto& writer) { return protocol::sendFlashLed(writer, resultCode); });
}

bool resetPrinter(PrinterObject& printer, uint16_t* resultCode) {
    return control(printer, resultCode,
                   [&](auto& writer) { return protocol::sendReset(writer, resetWholePrinter, resultCode); });
}

bool setToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    if (mode > toneCurves || (mode != 0 && data == nullptr)) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    const auto target = static_cast<uint8_t>(firstToneCurveTarget + mode - 1);
    const bool done =
        mode == 0 ? forgetToneCurves(printer, resultCode) : writeToneCurve(printer, target, data, resultCode);
    return done || device::fail(ZPRUSB_COMMUNICATION, resultCode);
}

}  // namespace printer
