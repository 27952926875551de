/// The two pipes between the host and one printer: requests and image data one way, answers the other. The
/// host's ends are blocking handles or descriptors that it uses like any file; the printer's ends are hidden in
/// here, wait with a time limit, and can be woken from outside.
///
/// One read of the host gets one answer, as a USB transfer would end with it. What doesn't fit into the host's
/// buffer is lost on Linux and fails the read on Windows.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "common/devices.h"

namespace control {

using Milliseconds = std::chrono::milliseconds;

/// Waits without a limit.
constexpr Milliseconds forever = Milliseconds::max();

constexpr size_t maximumUnreadAnswers = 16;

enum class Transfer { done, timedOut, ended };

class Channel {
public:
    /// @throws std::system_error when the system gives no more pipes.
    Channel();
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Gives away the host's ends, once; from then on they live on without the channel.
    HostPipe takeHostWriteEnd();
    HostPipe takeHostReadEnd();

    /// Reads what is there, at least one byte and at most `capacity`.
    /// @return `ended` when the host has closed its end or the channel was cancelled.
    Transfer read(uint8_t* bytes, size_t capacity, size_t& count, Milliseconds limit);

    /// Leaves one answer of 1 to 4096 bytes for the host to read. When the host has left too many unread, this
    /// one is lost: a printer that waited would take no more data either, and hold the host up.
    /// @return `done` or `ended`.
    Transfer write(const uint8_t* bytes, size_t length);

    /// Whether the host has an answer yet to read. Only for the thread that transfers.
    bool hasUnreadAnswer();

    /// Waits for nothing but cancel(): `timedOut` is the normal end.
    Transfer pause(Milliseconds duration);

    /// From any thread: makes the calls above return `ended`, those that are waiting and all later ones.
    void cancel();

    /// Closes the printer's ends, so that the host's transfers fail. Only for the thread that transfers.
    void end();

private:
    struct Ends;
    std::unique_ptr<Ends> ends_;
};

}  // namespace control
