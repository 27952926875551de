/// What the command line asks for. Each command is a struct here, a definition in arguments.cpp, and a run()
/// in commands.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "common_arguments.h"
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
    std::optional<uint8_t> option20;
    std::optional<uint16_t> option21;
    std::optional<uint16_t> option22;
};

struct WatchArguments {
    unsigned interval = 1000;  // milliseconds
};

struct SetArguments {
    std::string name;  // a word of settings()
    std::string value;
};

constexpr uint8_t lastResettableCounter = 6;

struct ResetCounterArguments {
    std::optional<uint8_t> number;  // none: all that can be reset
};

struct BlinkArguments {};

struct ResetArguments {};

struct Arguments : CommonArguments {
    std::variant<ListArguments, StatusArguments, InfoArguments, PrintArguments, WatchArguments, SetArguments,
                 ResetCounterArguments, BlinkArguments, ResetArguments>
        command;
};

/// Understands the command line. For --help and --version, and after an error, it prints what there is to say.
/// @return the exit status when there is nothing more to do.
std::variant<Arguments, int> parseArguments(std::vector<std::string> words);

}  // namespace tool
