/// Transfers on a test's pipe, as a thread makes them that may be ended by force.
#pragma once

#include <vector>

#include "platform/pipe.h"

struct Transfer {
    std::atomic<platform::PipeHandle> pipe;
    std::vector<uint8_t> buffer;
    uint32_t count = 0;
    bool succeeded = false;
};

inline void readOnce(void* argument) {
    auto& job = *static_cast<Transfer*>(argument);
    job.succeeded =
        platform::readPipe(job.pipe, job.buffer.data(), static_cast<uint32_t>(job.buffer.size()), job.count);
}

inline void writeAll(void* argument) {
    auto& job = *static_cast<Transfer*>(argument);
    job.succeeded =
        platform::writePipe(job.pipe, job.buffer.data(), static_cast<uint32_t>(job.buffer.size()), job.count);
}
