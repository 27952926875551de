/// The commands that the printer understands: one row each.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "printer.h"
#include "protocol.h"

namespace simulator {

/// Data without a frame that a command lets follow its answer.
struct DataTransfer {
    size_t length = 0;
    uint8_t missing = 0;  // stands for the bytes that don't arrive
    /// Takes the data, `length` bytes of which the first `arrived` ones came. Called without the printer's
    /// lock.
    std::function<void(Printer&, Bytes data, size_t arrived)> finish;
};

struct Reply {
    Answer answer;
    std::optional<DataTransfer> transfer{};
};

Reply withPayload(Bytes payload);

/// How long a payload may be.
struct PayloadRule {
    static constexpr size_t notCounted = ~size_t{0};

    size_t least = 0;
    size_t most = 0;
    size_t countAt = notCounted;  // where the payload says how many bytes it has beyond the least number

    bool allows(size_t length) const { return length >= least && length <= most; }
    bool countIsRight(ByteView payload) const;
};

/// Bytes of a payload that are always the same.
struct FixedBytes {
    size_t at = 0;
    ByteView bytes{};
};

struct Command {
    uint16_t id;  // the first identifier byte is the low one
    std::string_view name;
    PayloadRule payload;
    Reply (*handle)(Printer& printer, ByteView payload);  // called with the printer's lock held
    FixedBytes fixed{};
};

std::span<const Command> allCommands();

/// @return null when there is no such command.
const Command* findCommand(uint16_t id);
const Command* findCommand(std::string_view name);

/// The length of the request that begins with these four bytes.
/// @return none when no request begins with them.
std::optional<size_t> requestLength(ByteView header);

/// Why these bytes are no request.
/// @return none when they are one, if perhaps one with values that are refused.
std::optional<Refusal> flawOf(ByteView request);

/// Does what a request asks for, or refuses it; the caller holds the printer's lock.
Reply handleRequest(Printer& printer, ByteView request);

}  // namespace simulator
