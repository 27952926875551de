#include "settings.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr uint8_t resetPrinter = 3;
constexpr uint8_t resetToneCurve = 4;
constexpr uint8_t onlyParameter = 1;

Reply acknowledgeIf(bool inRange) {
    return inRange ? Reply{} : Reply{refuse(Refusal::outOfRange)};
}

}  // namespace

bool isInMemory(const Printer& printer, ByteView addressAndCount) {
    return size_t{addressAndCount[0]} + addressAndCount[1] <= printer.memory.size();
}

Reply flashLed(Printer&, ByteView) {
    return {};
}

Reply reset(Printer& printer, ByteView kind) {
    if (kind[0] == resetPrinter) printer.printingUntil = {};
    return acknowledgeIf(kind[0] == resetPrinter || kind[0] == resetToneCurve);
}

Reply operationButton(Printer&, ByteView setting) {
    return acknowledgeIf(setting[0] == 1 || setting[0] == 2);
}

Reply resetErrorLog(Printer& printer, ByteView) {
    printer.errorLog.clear();
    return {};
}

Reply setPrinterParameter(Printer&, ByteView numberAndValue) {
    return acknowledgeIf(numberAndValue[0] == onlyParameter);
}

// The memory takes writes with and without a permission, as hosts send both.
Reply maintenancePermission(Printer& printer, ByteView addressAndCount) {
    return acknowledgeIf(isInMemory(printer, addressAndCount));
}

Reply setEepromMaintenance(Printer& printer, ByteView payload) {
    if (!isInMemory(printer, payload)) return {refuse(Refusal::outOfRange)};
    std::ranges::copy(payload.subspan(2), printer.memory.begin() + payload[0]);
    return {};
}

Reply setPrinterUniqueString(Printer& printer, ByteView payload) {
    if (payload[0] == 0) return {refuse(Refusal::outOfRange)};
    printer.uniqueString.assign(payload.begin() + 1, payload.end());
    return {};
}

}  // namespace simulator
