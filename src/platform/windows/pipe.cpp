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

bool writePipe(const std::atomic<PipeHandle>& pipe, const uint8_t* bytes, uint32_t length, uint32_t& written,
               uint32_t chunkSize) {
    written = 0;
    do {
        const PipeHandle handle = pipe;
        if (handle == noPipe) return false;  // the same number means the current process elsewhere
        DWORD count = 0;
        const DWORD chunk = std::min(chunkSize, length - written);
        const bool success = WriteFile(handleOf(handle), bytes + written, chunk, &count, nullptr);
        written += count;
        if (!success || count == 0) return false;
    } while (written < length);
    return true;
}

bool readPipe(const std::atomic<PipeHandle>& pipe, uint8_t* bytes, uint32_t capacity, uint32_t& count) {
    count = 0;
    const PipeHandle handle = pipe;
    if (handle == noPipe) return false;
    DWORD received = 0;
    if (!ReadFile(handleOf(handle), bytes, capacity, &received, nullptr)) return false;
    count = received;
    return true;
}

}  // namespace platform
