#include "settings.h"

#include "update.h"

namespace simulator {
namespace {

constexpr uint8_t resetPrinter = 3;
constexpr uint8_t resetToneCurves = 4;
constexpr uint8_t onlyParameter = 1;

}  // namespace

Reply flashLed(Printer& printer, ByteView) {
    ++printer.ledFlashes;
    return {};
}

Reply reset(Printer& printer, ByteView kind) {
    switch (kind[0]) {
        case resetPrinter:
            ++printer.resets;
            printer.printingUntil = {};
            return {};
        case resetToneCurves:
            for (const uint8_t target : toneCurveTargets) printer.updates.erase(target);
            return {};
        default:
            return {refuse(Refusal::outOfRange)};
    }
}

Reply operationButton(Printer& printer, ByteView setting) {
    if (setting[0] != 1 && setting[0] != 2) return {refuse(Refusal::outOfRange)};
    printer.operationButton = setting[0];
    return {};
}

Reply resetErrorLog(Printer& printer, ByteView) {
    printer.errorLog.clear();
    return {};
}

Reply setPrinterParameter(Printer& printer, ByteView payload) {
    if (payload[0] != onlyParameter) return {refuse(Refusal::outOfRange)};
    printer.parameter = numberAt(payload, 1, 4);
    return {};
}

Reply setPrinterUniqueString(Printer& printer, ByteView payload) {
    if (payload[0] == 0) return {refuse(Refusal::outOfRange)};
    printer.uniqueString.assign(payload.begin() + 1, payload.end());
    return {};
}

}  // namespace simulator
