#include "printer/control.h"

#include "device/reservation.h"
#include "printer/status.h"
#include "protocol/exchange.h"
#include "protocol/response_parser.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

constexpr uint8_t resetWholePrinter = 3;
constexpr uint8_t resetToneCurves = 4;
constexpr uint8_t firstToneCurveTarget = 3;
constexpr uint8_t toneCurves = 2;

/// A printer that reports an error still gets the command; one that can't be reached doesn't.
template <class... Parameters, class... Values>
bool control(PrinterObject& printer, uint16_t* resultCode, bool (*send)(protocol::PipeWriter&, Parameters...),
             const Values&... values) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    uint16_t status = ZPRUSB_SUCCESS;
    queryStatus(printer, &status);
    const bool done =
        !protocol::isUnreachable(status) && protocol::perform(printer, resultCode, send, values...);
    return done || device::fail(ZPRUSB_COMMUNICATION, resultCode);
}

/// @param mode 1 or 2.
bool writeToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data, uint16_t* resultCode) {
    const auto target = static_cast<uint8_t>(firstToneCurveTarget + mode - 1);
    return protocol::perform(printer, resultCode, protocol::sendUpdate, target, 0u,
                             uint32_t{ZPRUSB_TONE_CURVE_SIZE}) &&
           device::directWriteInChunks(printer.writer, data, ZPRUSB_TONE_CURVE_SIZE, resultCode);
}

}  // namespace

bool blinkLed(PrinterObject& printer, uint16_t* resultCode) {
    return control(printer, resultCode, protocol::sendFlashLed);
}

bool resetPrinter(PrinterObject& printer, uint16_t* resultCode) {
    return control(printer, resultCode, protocol::sendReset, resetWholePrinter);
}

bool setToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    if (mode > toneCurves || (mode != 0 && data == nullptr)) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    const bool done = mode == 0 ? protocol::perform(printer, resultCode, protocol::sendReset, resetToneCurves)
                                : writeToneCurve(printer, mode, data, resultCode);
    return done || device::fail(ZPRUSB_COMMUNICATION, resultCode);
}

}  // namespace printer
