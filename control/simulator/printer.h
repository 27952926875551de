/// A simulated printer: what it was built with, what it remembers and what has happened to it.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fault.h"
#include "protocol.h"

namespace simulator {

using Clock = std::chrono::steady_clock;

/// The status numbers of conditions.
struct Condition {
    std::string_view name;
    uint8_t statusNumber;
};
constexpr Condition conditions[] = {
    {"ready", 0x00},        {"printing", 0x21},           {"cover open", 0x31},
    {"out of media", 0x33}, {"out of consumables", 0x34}, {"device error", 0x11},
};
constexpr uint8_t statusReady = conditions[0].statusNumber;
constexpr uint8_t statusPrinting = conditions[1].statusNumber;
constexpr uint8_t statusDeviceError = conditions[5].statusNumber;

/// The status of a condition; only a device error keeps its group and detail.
std::optional<Status> statusOf(std::string_view condition, uint8_t group, uint8_t detail);

std::string_view conditionOf(const Status& status);

/// One size that a printer offers. All lengths are in 1/100 mm.
struct MediaSize {
    uint8_t code = 0;
    uint32_t width = 0;
    uint32_t length = 0;
    uint32_t maximumLength = 0;
    uint32_t sectionWidth = 0;
    std::array<uint16_t, 5> sectionLengths{};
};

/// An exact size is printed as it is; all other codes stand for a variable length.
constexpr bool isExactSize(uint8_t mediaCode) {
    return mediaCode >= 0xF0 && mediaCode <= 0xFE;
}

/// The two bytes of the status answer that tell whether the printer is busy. They follow the status number
/// unless they are set.
using StatusFlags = std::array<uint8_t, 2>;

constexpr size_t counterCount = 7;
constexpr size_t uniqueStringSize = 23;

struct PrinterSetup {
    std::string serial;
    bool foreign = false;  // another maker's device that the control library happens to know
    std::vector<MediaSize> media{{.code = 0xF1, .width = 15240, .length = 10160},
                                 {.code = 0xF2, .width = 15240, .length = 20320}};
    std::chrono::milliseconds timePerPage{0};
    Status condition;
    std::optional<StatusFlags> statusFlags;
    std::string uniqueString = "SIMULATED PRINTER";
    std::array<uint32_t, counterCount> counters{};
    uint8_t jobNumber = 0;
    std::filesystem::path outputFolder;
    std::chrono::milliseconds dataTimeout{10'000};
};

/// A part of the maintenance memory.
struct MemoryRange {
    size_t address = 0;
    size_t count = 0;

    size_t end() const { return address + count; }
    bool covers(const MemoryRange& other) const { return address <= other.address && other.end() <= end(); }
};

/// Leave to write; it is good for the very next request only.
struct WritePermission {
    MemoryRange range;
    uint64_t request = 0;  // which one gave it
};

struct Diagnosis {
    uint8_t kind = 0;
    std::array<uint8_t, 2> parameters{};
    Status status;  // of the printer, when it was made

    bool passed() const { return status.number == statusReady || status.number == statusPrinting; }
};

/// What the host has sent for one target: a tone curve or a firmware image.
struct Update {
    uint32_t start = 0;
    Bytes data;
};

constexpr size_t maintenanceParamCount = 6;

struct Printer {
    explicit Printer(PrinterSetup initial);

    const PrinterSetup setup;

    std::mutex mutex;  // guards everything below
    std::condition_variable pageEnded;
    std::array<uint8_t, 256> memory{};  // the maintenance memory; it holds the counters
    std::optional<WritePermission> writePermission;
    std::array<uint16_t, maintenanceParamCount> maintenanceParams{};
    std::optional<Diagnosis> diagnosis;  // the last one
    uint8_t operationButton = 0;         // as these two were set; 0 before that
    uint32_t parameter = 0;
    std::map<uint8_t, Update> updates;  // those that came whole, by their target
    uint32_t ledFlashes = 0;
    uint32_t resets = 0;
    Status condition;
    std::optional<StatusFlags> statusFlags;
    std::deque<Status> errorLog;  // the newest first
    std::string uniqueString;
    uint8_t jobNumber;  // of the last page that was accepted
    Clock::time_point printingUntil;
    Clock::time_point absentUntil;  // unplugged before that
    FaultList faults;
    std::deque<Bytes> requests;  // those that nobody has taken yet
    uint64_t requestCount = 0;   // all that ever came
    uint32_t printedPages = 0;
    uint32_t endedPages = 0;  // with those whose data were not complete
    std::filesystem::path lastPage;

    Status status() const;
    StatusFlags flags() const;
    void setCondition(Status status);
    bool isPresent() const { return Clock::now() >= absentUntil; }
    void countPrints(uint32_t prints);
    std::array<uint32_t, counterCount> counters() const;
    void rememberRequest(const Bytes& request);
};

/// What a printer has to write can't be written: says so on standard error, and from now on the printer reports
/// a device error, as one does that could not print.
void breakDown(Printer& printer, const char* deed, const std::exception& error);

}  // namespace simulator
