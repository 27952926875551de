/// Every byte to and from a printer passes through here. Requests and answers go through worker threads, which
/// bounds each to 10 s; bulk data and raw answers go directly, for as long as the pipe blocks.
#pragma once

#include <atomic>

#include "device/result.h"
#include "platform/pipe.h"

namespace device {

constexpr uint32_t transferLimitMilliseconds = 10000;
constexpr uint32_t waitStepMilliseconds = 500;
constexpr uint32_t requestCapacity = 1024;    // bytes of one request
constexpr uint32_t answerCapacity = 300;      // bytes that a worker read asks for
constexpr uint32_t directReadCapacity = 512;  // bytes that a direct read asks for
constexpr uint32_t chunkSize = 4096;          // bytes of bulk data in one write

/// The write pipe of the printer that an object has selected. Operations without the API lock read the handle
/// while the device-change thread may clear it.
struct PipeWriter {
    std::atomic<platform::PipeHandle> pipe{platform::noPipe};
};

/// The read pipe, likewise.
struct PipeReader {
    std::atomic<platform::PipeHandle> pipe{platform::noPipe};
};

/// Both pipes of one printer.
struct Connection {
    PipeWriter writer;
    PipeReader reader;
};

/// Set once a worker had to be ended by force, and never cleared: from then on the pipes of that direction are
/// not closed through the control library any more, which might wait for the interrupted call.
inline constinit std::atomic<bool> writePipeAbandoned{false};
inline constinit std::atomic<bool> readPipeAbandoned{false};

/// Each of these gives 2600 when it fails, when it moves nothing (a direct read of 0 bytes is a success) and
/// when a worker doesn't finish in time. A write succeeds when the pipe has taken all of it, and ends as
/// platform::writePipe() says.
/// While the process is stopped, by a debugger or a shell, no more than `waitStepMilliseconds` of a worker's
/// time pass: an answer that comes meanwhile is received. (Within the last step before the limit it may be
/// lost.) The worker transfers hold the API lock for their whole run, so there is one worker at a time.

/// @param length at most `requestCapacity`; a longer request is refused with 1006.
Result workerWrite(PipeWriter& writer, const uint8_t* request, uint32_t length);

/// @param destination room for `answerCapacity` bytes; written on success only.
/// @param count receives the number of bytes, 0 on failure.
Result workerRead(PipeReader& reader, uint8_t* destination, uint32_t& count);

Result directWrite(PipeWriter& writer, const uint8_t* bytes, uint32_t length);

/// Bulk data in writes of at most `chunkSize` bytes; stops at the first that fails. With a length of 0 it sends
/// nothing, fails and writes no code.
/// @param sent receives the number of bytes that went out, those of a write that failed among them.
Result directWriteInChunks(PipeWriter& writer, const uint8_t* bytes, uint32_t length, uint32_t* sent = nullptr);

/// @param destination room for `directReadCapacity` bytes.
Result directRead(PipeReader& reader, uint8_t* destination, uint32_t& count);

/// One read of an answer whose first byte tells how many follow. A length byte that lies gives 2600, and the
/// bytes are handed out all the same.
/// @param destination room for `directReadCapacity` bytes; receives the bytes after the first.
Result lengthPrefixedRead(PipeReader& reader, uint8_t* destination, uint32_t& count);

}  // namespace device
