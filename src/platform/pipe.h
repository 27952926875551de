/// Blocking reads and writes on the pipe handles that the control library gives out: file handles on Windows,
/// file descriptors on POSIX systems. The handles stay the control library's; nothing here closes them.
///
/// A call that a signal interrupts goes on where it was, and a descriptor that was set to non-blocking is
/// waited for all the same: both calls return only with an outcome.
#pragma once

#include <atomic>
#include <cstdint>

namespace platform {

using PipeHandle = uint64_t;
constexpr PipeHandle noPipe = ~PipeHandle{0};

/// While it lives, a write to a pipe whose other end is gone fails and does nothing else; without it such a
/// write would end the process on POSIX systems. It stands around whole series of writes, as it costs more
/// than a small write does. Threads of platform/thread.h don't need it.
class BrokenPipeGuard {
public:
    BrokenPipeGuard();
    ~BrokenPipeGuard();
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;

private:
    uint64_t former_ = 0;  // what the thread's signal mask said about the broken-pipe signal
};

/// Writes all bytes, however long that takes, and returns when the pipe has room again. In a pipe that has room
/// for one chunk at a time, which stays in it until the printer has it, nothing is under way then.
/// @param pipe looked at before each try: nothing more goes into a handle that another thread has taken away.
/// @param written receives the number of bytes written, also when the pipe fails after some of them.
/// @param chunkSize the most that one call of the system is given. The caller doesn't divide the bytes itself,
/// since
///        each function between a loop and the system costs several percent of a write of bulk data.
/// @return whether the pipe took all bytes, at least one, and still has another end.
bool writePipe(const std::atomic<PipeHandle>& pipe, const uint8_t* bytes, uint32_t length, uint32_t& written,
               uint32_t chunkSize = UINT32_MAX);

/// Reads what is there, at least one byte unless the pipe is at its end, at most `capacity` bytes.
/// @param count receives the number of bytes read, 0 at the end of the pipe or after a failure.
/// @param pipe looked at before each try.
/// @return whether the system read without an error. A pipe whose writer is gone is at its end for POSIX
///         systems and an error for Windows.
bool readPipe(const std::atomic<PipeHandle>& pipe, uint8_t* bytes, uint32_t capacity, uint32_t& count);

}  // namespace platform
