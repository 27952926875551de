/// What the command line asks for. Each command is a struct here, a definition in arguments.cpp, and a run()
/// in commands.h.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "bytes.h"
#include "common_arguments.h"

namespace tool {

struct EepromReadArguments {
    uint8_t address = 0;
    uint8_t count = 0;
    std::string out;  // a file for the bytes, instead of a dump
};

struct EepromWriteArguments {
    uint8_t address = 0;
    Bytes bytes;
    std::string file;  // instead of the bytes
};

struct EepromDumpArguments {
    std::string file;
};

struct EepromRestoreArguments {
    std::string file;
};

struct DiagnoseArguments {
    uint8_t kind = 0;
    uint8_t first = 0;
    uint8_t second = 0;
    bool resultsOnly = false;
};

struct DiagnoseDataArguments {
    uint8_t kind = 0;
    uint8_t first = 0;
    uint8_t second = 0;
};

struct ErrorLogArguments {
    bool clear = false;
};

struct ToneCurveLoadArguments {
    std::string file;
    uint8_t curve = 0;
};

struct ToneCurveResetArguments {};

struct MaintenanceDataArguments {
    uint8_t first = 0;
    uint8_t second = 0;
};

struct MaintenanceSetArguments {
    std::array<uint16_t, 6> values{};
};

struct UniversalArguments {
    Bytes bytes;
};

struct RawArguments {
    Bytes bytes;
    bool noAnswer = false;  // don't wait for one
};

struct ReadRawArguments {};

struct ModelArguments {};

constexpr size_t identifierSize = 8;

struct IdentifiersArguments {
    Bytes bytes;  // of the printer to select; empty: list all
};

struct CommandArguments {
    std::string name;
    std::vector<std::string> values;
};

/// The names of the commands that can be sent by themselves.
std::vector<std::string> commandNames();

struct FirmwareInspectArguments {
    std::string file;
};

struct FirmwareUpdateArguments {
    std::string file;
    uint8_t target = 0;
    std::optional<uint32_t> start;  // otherwise where the file's data start
    bool force = false;             // also what is doubtful
    bool dryRun = false;
};

struct Arguments : CommonArguments {
    bool confirmed = false;  // what changes the printer is done without asking
    std::variant<EepromReadArguments, EepromWriteArguments, EepromDumpArguments, EepromRestoreArguments,
                 DiagnoseArguments, DiagnoseDataArguments, ErrorLogArguments, ToneCurveLoadArguments,
                 ToneCurveResetArguments, MaintenanceDataArguments, MaintenanceSetArguments, UniversalArguments,
                 RawArguments, ReadRawArguments, ModelArguments, IdentifiersArguments, CommandArguments,
                 FirmwareInspectArguments, FirmwareUpdateArguments>
        command;
};

/// Understands the command line. For --help and --version, and after an error, it prints what there is to say.
/// @return the exit status when there is nothing more to do.
std::variant<Arguments, int> parseArguments(std::vector<std::string> words);

}  // namespace tool
