/// Blocking reads and writes on the pipe handles that the control library gives out: file handles on Windows,
/// file descriptors on POSIX systems. The handles stay the control library's; nothing here closes them.
///
/// A call that a signal interrupts goes on where it was, and a descriptor that was set to non-blocking is
/// waited for all the same: both calls return only with an outcome.
#pragma once

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

/// Writes all bytes, however long that takes.
/// @param written receives the number of bytes written: fewer when the pipe takes no more after some of them.
/// @return whether the system took any bytes, or reported no error.
bool writePipe(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t& written);

/// The same in pieces, each a write of its own, until one of them moves nothing. A loop here, since each call
/// between a caller and the system costs several percent of a write of bulk data.
/// @return whether every piece moved something.
bool writePipeInPieces(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t pieceSize);

/// Reads what is there, at least one byte unless the pipe is at its end, at most `capacity` bytes.
/// @param count receives the number of bytes read, 0 at the end of the pipe or after a failure.
/// @return whether the system read without an error. A pipe whose writer is gone is at its end for POSIX
/// systems
///         and an error for Windows.
bool readPipe(PipeHandle pipe, uint8_t* bytes, uint32_t capacity, uint32_t& count);

}  // namespace platform
