/// Faults that a simulated printer is told to have.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "protocol.h"

namespace simulator {

enum class FaultAction {
    late,          // answers, or takes data again, after some seconds
    never,         // doesn't answer, or takes no more data
    shorten,       // sends only the first bytes of the answer
    lengthen,      // sends more bytes after the answer
    changeKind,    // sends another kind of answer
    error,         // refuses the command
    changeStatus,  // answers normally, with another status
    closePipe,     // ends both pipes but stays plugged in
    unplug,
    replug,  // is unplugged, and can be found again after some seconds
};

struct Fault {
    uint32_t printer = 0;
    std::optional<uint16_t> command;    // identifier of the command it waits for; none: any command
    std::optional<uint64_t> imageByte;  // instead of a command: this many bytes of page or update data
    uint32_t occurrence = 1;            // 0: every one
    FaultAction action = FaultAction::never;
    std::chrono::milliseconds duration{0};
    uint32_t bytes = 0;  // of shorten and lengthen
    uint8_t kind = 0;
    Status status;  // of error and changeStatus
};

/// The faults of one printer, and how often each one's moment has come.
class FaultList {
public:
    void add(const Fault& fault) { waiting_.push_back({fault, 0}); }
    void clear() { waiting_.clear(); }

    /// Counts one request, and finds the first fault that is due with it.
    std::optional<Fault> dueAtCommand(uint16_t command);

    /// Counts one page or update, and finds the first fault that is due within its data.
    std::optional<Fault> dueInData();

private:
    struct Waiting {
        Fault fault;
        uint32_t seen;
    };

    template <class Matches>
    std::optional<Fault> due(Matches matches);

    std::vector<Waiting> waiting_;
};

}  // namespace simulator
