#include "platform/pipe.h"

#include <algorithm>

#include "system.h"

namespace platform {

namespace {

HANDLE handleOf(PipeHandle pipe) {
    return reinterpret_cast<HANDLE>(pipe);
}

}  // namespace

// A broken pipe is an error code here and nothing else.
BrokenPipeGuard::BrokenPipeGuard() = default;

BrokenPipeGuard::~BrokenPipeGuard() = default;

bool writePipe(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t& written) {
    written = 0;
    if (pipe == noPipe) return false;  // the same number means the current process elsewhere
    DWORD count = 0;
    const bool success = WriteFile(handleOf(pipe), bytes, length, &count, nullptr);
    written = count;
    return success || count > 0;
}

bool writePipeInPieces(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t pieceSize) {
    while (length > 0) {
        const uint32_t piece = std::min(pieceSize, length);
        uint32_t written = 0;
        if (!writePipe(pipe, bytes, piece, written) || written == 0) return false;
        bytes += piece;
        length -= piece;
    }
    return true;
}

bool readPipe(PipeHandle pipe, uint8_t* bytes, uint32_t capacity, uint32_t& count) {
    count = 0;
    if (pipe == noPipe) return false;
    DWORD received = 0;
    if (!ReadFile(handleOf(pipe), bytes, capacity, &received, nullptr)) return false;
    count = received;
    return true;
}

}  // namespace platform
