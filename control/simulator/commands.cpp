#include "commands.h"

#include <algorithm>
#include <array>

#include "maintenance.h"
#include "page.h"
#include "settings.h"
#include "update.h"

namespace simulator {
namespace {

Reply getStatus(Printer& printer, ByteView) {
    constexpr size_t size = 48, jobNumberAt = 24, firstFlagAt = 32, secondFlagAt = 39;
    Bytes payload(size, 0);
    payload[jobNumberAt] = printer.jobNumber;
    const StatusFlags flags = printer.flags();
    payload[firstFlagAt] = flags[0];
    payload[secondFlagAt] = flags[1];
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

constexpr std::array<uint8_t, 14> zeros{};
constexpr std::array<uint8_t, 12> modelNamePayload{'R', 'F'};

// In the order of their identifiers' second, then first byte.
constexpr Command commands[] = {
    {0x0001, "GetStatus", {}, getStatus},
    {0x0002, "GetMediaInfo", {}, getMediaInfo},
    {0x0003, "GetModelName", {12, 12}, getModelName, {0, modelNamePayload}},
    {0x0004, "GetErrorLog", {}, getErrorLog},
    {0x4001, "Print", {14, 14}, print, {9, ByteView(zeros).first(1)}},
    {0x4002, "PrintLong", {19, 19}, printLong, {14, ByteView(zeros).first(1)}},
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
    {0xC008, "SetMaintenanceParams", {26, 26}, setMaintenanceParams, {12, zeros}},
    {0xC009, "GetMaintenanceData", {2, 2}, getMaintenanceData},
    {0xC0FF, "Universal", {1, 247}, universal},
};

// The request for the model name is older than the frame: where others have their payload's length it has the
// first two of the letters "ZPRF", and it always has 16 bytes.
constexpr uint16_t modelNameCommand = 0x0003;
constexpr uint32_t modelNameRequest = 0x505A0003;
constexpr size_t modelNameRequestLength = 16;

const Command* commandOf(ByteView request) {
    return findCommand(static_cast<uint16_t>(numberAt(request, 0, 2)));
}

bool hasFixedBytes(ByteView payload, const FixedBytes& fixed) {
    return std::ranges::equal(payload.subspan(fixed.at, fixed.bytes.size()), fixed.bytes);
}

}  // namespace

Reply withPayload(Bytes payload) {
    Reply reply;
    reply.answer.payload = std::move(payload);
    return reply;
}

bool PayloadRule::countIsRight(ByteView payload) const {
    return countAt == notCounted || payload.size() == least + payload[countAt];
}

std::span<const Command> allCommands() {
    return commands;
}

const Command* findCommand(uint16_t id) {
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == std::end(commands) ? nullptr : found;
}

const Command* findCommand(std::string_view name) {
    const auto found = std::ranges::find(commands, name, &Command::name);
    return found == std::end(commands) ? nullptr : found;
}

std::optional<size_t> requestLength(ByteView header) {
    const Command* command = commandOf(header);
    if (command == nullptr) return std::nullopt;
    if (command->id == modelNameCommand) {
        if (numberAt(header, 0, 4) != modelNameRequest) return std::nullopt;
        return modelNameRequestLength;
    }
    const size_t length = numberAt(header, 2, 2);
    if (!command->payload.allows(length)) return std::nullopt;
    return requestHeaderSize + length;
}

std::optional<Refusal> flawOf(ByteView request) {
    if (request.size() < requestHeaderSize) return Refusal::wrongLength;
    const Command* command = commandOf(request);
    if (command == nullptr) return Refusal::unknownCommand;
    const bool isWhole = requestLength(request) == request.size();
    if (!isWhole || !command->payload.countIsRight(request.subspan(requestHeaderSize)))
        return Refusal::wrongLength;
    return std::nullopt;
}

Reply handleRequest(Printer& printer, ByteView request) {
    if (const auto flaw = flawOf(request)) return {refuse(*flaw)};
    const Command* command = commandOf(request);
    const ByteView payload = request.subspan(requestHeaderSize);
    if (!hasFixedBytes(payload, command->fixed)) return {refuse(Refusal::outOfRange)};
    return command->handle(printer, payload);
}

}  // namespace simulator
