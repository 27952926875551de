#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tool {

struct ShowArguments {};

struct SetArguments {
    std::vector<std::string> values;  // key=value
};

struct FaultArguments {
    std::vector<std::string> values;  // key=value
    bool clear = false;
};

struct Arguments {
    std::optional<uint32_t> process;  // none: the only one there is
    std::optional<uint32_t> printer;
    bool json = false;
    std::variant<ShowArguments, SetArguments, FaultArguments> command;
};

/// Understands the command line. For --help and --version, and after an error, it prints what there is to say.
/// @return the exit status when there is nothing more to do.
std::variant<Arguments, int> parseArguments(std::vector<std::string> words);

}  // namespace tool
