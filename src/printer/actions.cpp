#include "printer/actions.h"

#include "device/reservation.h"
#include "printer/status.h"
#include "protocol/answer_codes.h"
#include "protocol/exchange.h"
#include "protocol/numbers.h"
#include "protocol/requests.h"
#include "protocol/service_sizes.h"

namespace printer {

namespace {

using device::failure;
using device::Reservation;
using protocol::Request;
namespace request = protocol::request;

/// Every failure of an exchange is 2600.
Result doneOr2600(const Result& result) {
    return result ? device::done : failure(ZPRUSB_COMMUNICATION);
}

/// A printer that reports an error still gets the command; one that can't be reached doesn't.
Result act(PrinterObject& printer, const Request& request) {
    const Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    if (protocol::isUnreachable(queryStatus(printer).code)) return failure(ZPRUSB_COMMUNICATION);
    return doneOr2600(protocol::perform(printer.connection, request));
}

/// @param mode 1 or 2.
Result writeToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data) {
    const auto target = static_cast<uint8_t>(protocol::updateTarget::firstToneCurve + mode - 1);
    const Result accepted =
        protocol::perform(printer.connection, request::update(target, 0, ZPRUSB_TONE_CURVE_SIZE));
    if (!accepted) return accepted;
    return device::directWriteInChunks(printer.connection.writer, data, ZPRUSB_TONE_CURVE_SIZE);
}

}  // namespace

Result blinkLed(PrinterObject& printer) {
    return act(printer, request::flashLed());
}

Result resetPrinter(PrinterObject& printer) {
    return act(printer, request::reset(protocol::resetKind::wholePrinter));
}

Result setToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data) {
    const Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    if (mode > protocol::toneCurves || (mode != 0 && data == nullptr)) return failure(ZPRUSB_BAD_ARGUMENT);
    const Request forget = request::reset(protocol::resetKind::toneCurves);
    return doneOr2600(mode == 0 ? protocol::perform(printer.connection, forget)
                                : writeToneCurve(printer, mode, data));
}

}  // namespace printer
