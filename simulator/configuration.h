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

struct Configuration {
    std::vector<PrinterSetup> printers;
    std::vector<Fault> faults;
};

constexpr size_t maximumPrinters = 128;

/// @throws ConfigurationError
Configuration parseConfiguration(const std::string& json);

/// @param json one element of the configuration's "faults".
/// @throws ConfigurationError
Fault parseFault(const std::string& json, size_t printers);

}  // namespace simulator
