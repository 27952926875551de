#include "printer.h"

#include <algorithm>
#include <cstdio>

namespace simulator {
namespace {

// Each counts prints; what else a real printer's counters count, its maker knows.
constexpr std::array<uint8_t, counterCount> counterAddresses{0x60, 0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC};
constexpr size_t counterSize = 4;

// Group and detail of an error that nobody can clear at the printer itself.
constexpr Status cannotPrint{statusDeviceError, 1, 0};

constexpr size_t errorLogEntries = 20;
constexpr size_t keptRequests = 1000;

void storeCounter(Printer& printer, size_t counter, uint32_t value) {
    for (size_t i = 0; i < counterSize; ++i) {
        printer.memory[counterAddresses[counter] + i] = static_cast<uint8_t>(value >> 8 * i);
    }
}

}  // namespace

std::optional<Status> statusOf(std::string_view condition, uint8_t group, uint8_t detail) {
    const auto found = std::ranges::find(conditions, condition, &Condition::name);
    if (found == std::end(conditions)) return std::nullopt;
    if (found->statusNumber == statusDeviceError) return Status{statusDeviceError, group, detail};
    return Status{found->statusNumber};
}

std::string_view conditionOf(const Status& status) {
    return std::ranges::find(conditions, status.number, &Condition::statusNumber)->name;
}

Printer::Printer(PrinterSetup initial)
    : setup(std::move(initial)),
      statusFlags(setup.statusFlags),
      uniqueString(setup.uniqueString),
      jobNumber(setup.jobNumber) {
    for (size_t i = 0; i < counterCount; ++i) storeCounter(*this, i, setup.counters[i]);
    setCondition(setup.condition);
}

Status Printer::status() const {
    if (condition.number == statusReady && Clock::now() < printingUntil) return {statusPrinting};
    return condition;
}

StatusFlags Printer::flags() const {
    const uint8_t busy = status().number == statusPrinting;
    return statusFlags.value_or(StatusFlags{busy, busy});
}

void Printer::setCondition(Status status) {
    condition = status;
    if (status.number == statusReady || status.number == statusPrinting) return;
    errorLog.push_front(status);
    if (errorLog.size() > errorLogEntries) errorLog.pop_back();
}

void Printer::countPrints(uint32_t prints) {
    const auto before = counters();
    for (size_t i = 0; i < counterCount; ++i) storeCounter(*this, i, before[i] + prints);
}

std::array<uint32_t, counterCount> Printer::counters() const {
    std::array<uint32_t, counterCount> values{};
    std::ranges::transform(counterAddresses, values.begin(),
                           [&](uint8_t address) { return numberAt(memory, address, counterSize); });
    return values;
}

void breakDown(Printer& printer, const char* deed, const std::exception& error) {
    std::fprintf(stderr, "Simulated printer %s can't %s: %s\n", printer.setup.serial.c_str(), deed,
                 error.what());
    const std::lock_guard lock(printer.mutex);
    printer.setCondition(cannotPrint);
}

void Printer::rememberRequest(const Bytes& request) {
    ++requestCount;
    requests.push_back(request);
    if (requests.size() > keptRequests) requests.pop_front();
}

}  // namespace simulator
