#include "update.h"

#include <algorithm>

#include "hidden_file.h"

namespace simulator {
namespace {

constexpr uint32_t toneCurveSize = 1536;
constexpr uint32_t largestImage = 16 << 20;

bool isPossible(uint8_t target, uint32_t start, uint32_t length) {
    const bool isToneCurve = std::ranges::find(toneCurveTargets, target) != std::end(toneCurveTargets);
    if (isToneCurve) return start == 0 && length == toneCurveSize;
    return length >= 1 && length <= largestImage;
}

void writeFile(const PrinterSetup& printer, uint8_t target, const Bytes& data) {
    const std::string name = printer.serial + "-update-" + std::to_string(target) + ".bin";
    std::filesystem::create_directories(printer.outputFolder);
    HiddenFile(printer.outputFolder, data.data(), data.size()).moveOver(printer.outputFolder / name);
}

void keep(Printer& printer, uint8_t target, Update update) {
    try {
        writeFile(printer.setup, target, update.data);
    } catch (const std::exception& error) {
        return breakDown(printer, "write an update", error);
    }
    const std::lock_guard lock(printer.mutex);
    printer.updates[target] = std::move(update);
}

}  // namespace

Reply update(Printer&, ByteView payload) {
    const uint8_t target = payload[0];
    const uint32_t start = numberAt(payload, 1, 4);
    const uint32_t length = numberAt(payload, 5, 4);
    if (!isPossible(target, start, length)) return {refuse(Refusal::outOfRange)};
    Reply reply;
    reply.transfer =
        DataTransfer{.length = length, .finish = [=](Printer& printer, Bytes data, size_t arrived) {
                         if (arrived == length) keep(printer, target, {start, std::move(data)});
                     }};
    return reply;
}

}  // namespace simulator
