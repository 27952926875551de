#pragma once

#include <cstdint>
#include <optional>

namespace tool {

/// What every command line of the tools can say.
struct CommonArguments {
    std::optional<uint8_t> printer;  // none: the first one that is found
    bool json = false;
};

}  // namespace tool
