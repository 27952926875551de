/// Pipes between the library and the test: one end is the handle that the library is given.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/pipe.h"

using Bytes = std::vector<uint8_t>;

/// Bytes that count up from `start`.
inline Bytes countingBytes(size_t count, uint8_t start) {
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(start + i);
    return bytes;
}

struct FakePipe {
    uint64_t libraryEnd;
    uint64_t testEnd;
};

/// For what the library writes. Each of its writes arrives as one piece.
FakePipe makeRequestPipe();

/// For what the library reads.
FakePipe makeAnswerPipe();

/// A handle that reads successfully, and nothing.
uint64_t openNothing();

/// Waits for the next piece; nothing at the end of the pipe.
inline std::optional<Bytes> receivePiece(uint64_t testEnd) {
    Bytes piece(65536);
    uint32_t count = 0;
    if (!platform::readPipe(testEnd, piece.data(), 65536, count) || count == 0) return std::nullopt;
    piece.resize(count);
    return piece;
}

/// Returns whether all was taken.
inline bool sendBytes(uint64_t end, const Bytes& bytes) {
    const platform::BrokenPipeGuard guard;
    uint32_t written = 0;
    platform::writePipe(end, bytes.data(), static_cast<uint32_t>(bytes.size()), written);
    return written == bytes.size();
}

/// Makes both ends' reads and writes fail, the ones that are blocked too.
void hangUp(uint64_t testEnd);

/// No thread may be using the end.
void closeEnd(uint64_t end);

/// Tells the library, once it listens, that the device nodes changed, in the way in which the system does it.
void reportDeviceChange();

/// Another device-change message, which is none of the library's business; returns when the library has dealt
/// with it. False where the system has no such thing.
bool reportOtherDeviceEvent();
