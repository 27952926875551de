#include "commands.h"

#include <algorithm>

#include "maintenance.h"
#include "page.h"
#include "settings.h"
#include "update.h"

namespace simulator {
namespace {

Reply getStatus(Printer& printer, ByteView) {
    constexpr size_t size = 48, jobNumberAt = 24, busyAt = 32, busyToo = 39;
    Bytes payload(size, 0);
    payload[jobNumberAt] = printer.jobNumber;
    payload[busyAt] = payload[busyToo] = printer.status().number == statusPrinting;
    return withPayload(std::move(payload));
}

Reply getMediaInfo(Printer& printer, ByteView) {
    Bytes payload{static_cast<uint8_t>(printer.setup.media.size())};
    for (const MediaSize& media : printer.setup.media) {
        appendNumber(payload, media.code, 1);
        appendNumber(payload, media.width, 4);
        appendNumber(payload, media.length, 4);
        appendNumber(payload, 0, 2);
        appendNumber(payload, media.maximumLength, 4);
        appendNumber(payload, media.sectionWidth, 4);
        for (const uint16_t length : media.sectionLengths) appendNumber(payload, length, 2);
        appendNumber(payload, 0, 1);
    }
    return withPayload(std::move(payload));
}

Reply getModelName(Printer&, ByteView) {
    Bytes payload;
    appendPadded(payload, "SIMULATED", 16);
    return withPayload(std::move(payload));
}

Reply getErrorLog(Printer& printer, ByteView) {
    constexpr size_t size = 61;
    Bytes payload{static_cast<uint8_t>(printer.errorLog.size())};
    for (const Status& entry : printer.errorLog) {
        payload.insert(payload.end(), {entry.number, entry.group, entry.detail});
    }
    payload.resize(size, 0);
    return withPayload(std::move(payload));
}

Reply getFirmwareInfo(Printer&, ByteView request) {
    constexpr uint8_t components = 7;
    const uint8_t component = request[0];
    if (component < 1 || component > components) return {refuse(Refusal::outOfRange)};
    Bytes payload;
    appendPadded(payload, "SIMULATE", 8);
    appendPadded(payload, "COMPONENT " + std::to_string(component), 16);
    appendPadded(payload, "1.00", 10);
    appendNumber(payload, component, 1);
    appendNumber(payload, 0, 3);
    return withPayload(std::move(payload));
}

Reply getPrinterUniqueString(Printer& printer, ByteView) {
    Bytes payload;
    appendPadded(payload, printer.uniqueString, uniqueStringSize);
    return withPayload(std::move(payload));
}

// In the order of their identifiers' second, then first byte.
constexpr Command commands[] = {
    {0x0001, "GetStatus", {}, getStatus},
    {0x0002, "GetMediaInfo", {}, getMediaInfo},
    {0x0003, "GetModelName", {12, 12}, getModelName},
    {0x0004, "GetErrorLog", {}, getErrorLog},
    {0x4001, "Print", {14, 14}, print},
    {0x4002, "PrintLong", {19, 19}, printLong},
    {0x4003, "FlashLed", {}, flashLed},
    {0x4004, "Reset", {1, 1}, reset},
    {0x4006, "OperationButton", {1, 1}, operationButton},
    {0x4007, "ResetErrorLog", {}, resetErrorLog},
    {0x4008, "SetPrinterParameter", {5, 5}, setPrinterParameter},
    {0x8002, "MaintenancePermission", {2, 2}, maintenancePermission},
    {0x8003, "GetPrinterUniqueString", {}, getPrinterUniqueString},
    {0xC001, "SelfDiagnosis", {3, 3}, selfDiagnosis},
    {0xC002, "GetSelfDiagnosisResults", {}, getSelfDiagnosisResults},
    {0xC003, "GetFirmwareInfo", {1, 1}, getFirmwareInfo},
    {0xC004, "Update", {9, 9}, update},
    {0xC005, "GetEepromMaintenance", {2, 2}, getEepromMaintenance},
    {0xC006, "SetEepromMaintenance", {2, 257, 1}, setEepromMaintenance},
    {0xC007, "SetPrinterUniqueString", {1, 1 + uniqueStringSize, 0}, setPrinterUniqueString},
    {0xC008, "SetMaintenanceParams", {26, 26}, setMaintenanceParams},
    {0xC009, "GetMaintenanceData", {2, 2}, getMaintenanceData},
    {0xC0FF, "Universal", {1, 247}, universal},
};

// The request for the model name is older than the frame: where others have their payload's length it has the
// first two of the letters "ZPRF", and it always has 16 bytes.
constexpr uint32_t modelNameRequest = 0x505A0003;
constexpr size_t modelNameRequestLength = 16;

Reply answerOf(Printer& printer, ByteView request) {
    const Command* command = findCommand(static_cast<uint16_t>(numberAt(request, 0, 2)));
    if (command == nullptr) return {refuse(Refusal::unknownCommand)};
    const ByteView payload = request.subspan(requestHeaderSize);
    if (request.size() != requestLength(request) || !command->payload.allows(payload)) {
        return {refuse(Refusal::wrongLength)};
    }
    return command->handle(printer, payload);
}

}  // namespace

Reply withPayload(Bytes payload) {
    Reply reply;
    reply.answer.payload = std::move(payload);
    return reply;
}

bool PayloadRule::allows(ByteView payload) const {
    if (payload.size() < least || payload.size() > most) return false;
    return countAt == notCounted || payload.size() == least + payload[countAt];
}

const Command* findCommand(uint16_t id) {
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == std::end(commands) ? nullptr : found;
}

const Command* findCommand(std::string_view name) {
    const auto found = std::ranges::find(commands, name, &Command::name);
    return found == std::end(commands) ? nullptr : found;
}

size_t requestLength(ByteView header) {
    if (numberAt(header, 0, 4) == modelNameRequest) return modelNameRequestLength;
    return requestHeaderSize + numberAt(header, 2, 2);
}

Reply handleRequest(Printer& printer, ByteView request) {
    if (request.size() < requestHeaderSize) return {refuse(Refusal::wrongLength)};
    return answerOf(printer, request);
}

}  // namespace simulator
