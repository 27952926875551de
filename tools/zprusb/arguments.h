/// What the command line asks for. Each command is a struct here, a definition in arguments.cpp, and a run()
/// in commands.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "media.h"

namespace tool {

struct ListArguments {};

struct StatusArguments {
    bool all = false;
};

struct InfoArguments {
    std::vector<std::string> kinds;  // words of infoKinds(); empty for all
    bool raw = false;
};

struct PrintArguments {
    std::string image;
    std::optional<WantedSize> size;
    uint16_t copies = 1;
    std::optional<uint8_t> section;  // of a long page; 0 is the whole page
    bool fit = false;
};

struct Arguments {
    std::optional<uint8_t> printer;  // none: the first one that is found
    bool json = false;
    std::variant<ListArguments, StatusArguments, InfoArguments, PrintArguments> command;
};

/// Understands the command line. For --help and --version, and after an error, it prints what there is to say.
/// @return the exit status when there is nothing more to do.
std::variant<Arguments, int> parseArguments(std::vector<std::string> words);

}  // namespace tool
