/// The JSON file that sets up the simulated printers.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "fault.h"
#include "printer.h"

namespace simulator {

/// What is wrong with a configuration, in one sentence without its full stop.
struct ConfigurationError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What somebody does to a printer.
struct Change {
    uint32_t printer = 0;
    std::optional<Status> condition{};
    std::optional<StatusFlags> statusFlags{};
    std::optional<bool> plugged{};
};

struct TimedChange {
    std::chrono::milliseconds after;  // since the printers were set up
    Change change;
};

struct Configuration {
    std::vector<PrinterSetup> printers;
    std::vector<Fault> faults;
    std::vector<TimedChange> timeline;  // the earliest first
};

constexpr size_t maximumPrinters = 128;

/// @throws ConfigurationError when the file can't be read, or holds more than a configuration can.
std::string readConfigurationFile(const std::filesystem::path& file);

/// @throws ConfigurationError
Configuration parseConfiguration(const std::string& json);

/// @param json one element of the configuration's "faults".
/// @throws ConfigurationError
Fault parseFault(const std::string& json, size_t printers);

/// @param json one element of the configuration's "timeline", without its time.
/// @throws ConfigurationError
Change parseChange(const std::string& json, size_t printers);

}  // namespace simulator
