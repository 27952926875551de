/// What the command line asks for. Each command is a struct here, a definition in arguments.cpp, and a run()
/// in commands.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "common_arguments.h"
#include "image/picture_reader.h"
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
    std::vector<std::string> images;  // "-" is standard input
    std::string watch;                // a folder; empty for none
    std::string preview;              // the file for the page instead of a printer; empty for none
    bool any = false;
    unsigned timeoutSeconds = 60;
    Gravity gravity{};
    std::optional<unsigned> rotation;  // degrees clockwise
    double border = 0;                 // in millimetres
    std::optional<WantedSize> size;
    uint16_t copies = 1;
    std::optional<uint8_t> section;  // of a long page; 0 is the whole page
    bool fit = false;
    bool force = false;  // prints damaged pictures
    uint64_t mostPixels = Reading{}.mostPixels;
    std::string profile;  // the file of the printer's; empty for sRGB
    Intent intent = Intent::relative;
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

struct DoctorArguments {};

struct BlinkArguments {};

struct ResetArguments {};

struct Arguments : CommonArguments {
    std::variant<ListArguments, StatusArguments, InfoArguments, PrintArguments, WatchArguments, SetArguments,
                 ResetCounterArguments, DoctorArguments, BlinkArguments, ResetArguments>
        command;
};

/// Understands the command line. For --help and --version it prints what there is to say.
/// @return the exit status when there is nothing more to do.
/// @throws WrongUsage
std::variant<Arguments, int> parseArguments(std::vector<std::string> words);

}  // namespace tool
