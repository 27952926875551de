#include "maintenance.h"

#include <algorithm>

namespace simulator {
namespace {

constexpr std::string_view mark = "SIMULATION";

MemoryRange rangeIn(ByteView payload) {
    return {payload[0], payload[1]};
}

bool isInMemory(const Printer& printer, const MemoryRange& range) {
    return range.end() <= printer.memory.size();
}

bool mayWrite(const Printer& printer, const MemoryRange& range) {
    const auto& permission = printer.writePermission;
    return permission && permission->request + 1 == printer.requestCount && permission->range.covers(range);
}

struct ParameterRange {
    uint8_t least = 0;
    uint8_t most = 0xFF;

    bool includes(uint8_t parameter) const { return parameter >= least && parameter <= most; }
};
constexpr ParameterRange any;

// What both parameters of each kind of diagnosis may be, from kind 1 on.
constexpr ParameterRange possibleParameters[][2] = {
    {any, any},       {{1, 7}, any}, {{1, 2}, {1, 5}}, {{1, 3}, {1, 3}},
    {{1, 3}, {1, 2}}, {{1, 7}, any}, {{1, 13}, any},
};

bool isPossible(const Diagnosis& diagnosis) {
    if (diagnosis.kind < 1 || diagnosis.kind > std::size(possibleParameters)) return false;
    const auto& ranges = possibleParameters[diagnosis.kind - 1];
    return ranges[0].includes(diagnosis.parameters[0]) && ranges[1].includes(diagnosis.parameters[1]);
}

Bytes encode(const Diagnosis& diagnosis) {
    constexpr uint8_t passed = 1, failed = 2;
    const auto& [kind, parameters, status] = diagnosis;
    return {kind,          parameters[0], parameters[1], diagnosis.passed() ? passed : failed,
            status.number, status.group,  status.detail};
}

}  // namespace

Reply maintenancePermission(Printer& printer, ByteView payload) {
    const MemoryRange range = rangeIn(payload);
    if (!isInMemory(printer, range)) return {refuse(Refusal::outOfRange)};
    printer.writePermission = WritePermission{range, printer.requestCount};
    return {};
}

Reply setEepromMaintenance(Printer& printer, ByteView payload) {
    const MemoryRange range = rangeIn(payload);
    if (!isInMemory(printer, range)) return {refuse(Refusal::outOfRange)};
    if (!mayWrite(printer, range)) return {refuse(Refusal::notPermitted)};
    std::ranges::copy(payload.subspan(2), printer.memory.begin() + payload[0]);
    return {};
}

Reply getEepromMaintenance(Printer& printer, ByteView payload) {
    if (!isInMemory(printer, rangeIn(payload))) return {refuse(Refusal::outOfRange)};
    const auto begin = printer.memory.begin() + payload[0];
    return withPayload(Bytes(begin, begin + payload[1]));
}

Reply selfDiagnosis(Printer& printer, ByteView payload) {
    const Diagnosis diagnosis{payload[0], {payload[1], payload[2]}, printer.status()};
    if (!isPossible(diagnosis)) return {refuse(Refusal::outOfRange)};
    printer.diagnosis = diagnosis;
    return withPayload(encode(diagnosis));
}

Reply getSelfDiagnosisResults(Printer& printer, ByteView) {
    constexpr size_t size = 40;
    if (!printer.diagnosis) return {refuse(Refusal::noResults)};
    Bytes payload = encode(*printer.diagnosis);
    appendPadded(payload, mark, size - payload.size());
    return withPayload(std::move(payload));
}

Reply setMaintenanceParams(Printer& printer, ByteView payload) {
    for (size_t i = 0; i < maintenanceParamCount; ++i) {
        printer.maintenanceParams[i] = static_cast<uint16_t>(numberAt(payload, 2 * i, 2));
    }
    return {};
}

Reply getMaintenanceData(Printer& printer, ByteView selectors) {
    constexpr size_t size = 38;
    Bytes payload(selectors.begin(), selectors.end());
    appendNumber(payload, printer.printedPages, 4);
    appendPadded(payload, mark, mark.size());
    for (const uint16_t value : printer.maintenanceParams) appendNumber(payload, value, 2);
    payload.resize(size, 0);
    return withPayload(std::move(payload));
}

Reply universal(Printer&, ByteView payload) {
    return withPayload(Bytes(payload.begin(), payload.end()));
}

}  // namespace simulator
