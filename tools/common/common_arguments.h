#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

/// Which printer a command is for, and how long it may wait while another program uses it.
struct PrinterChoice {
    std::string who;                      // number, name or serial; empty: the first one that is found
    std::optional<unsigned> waitSeconds;  // none: as long as it takes
};

/// What every command line of the tools can say.
struct CommonArguments {
    PrinterChoice printer;
    bool waitWasAsked = false;  // --wait, with or without a time
    bool json = false;
};

}  // namespace tool
