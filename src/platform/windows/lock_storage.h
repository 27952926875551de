#pragma once

#include <atomic>
#include <cstdint>

namespace platform {

/// The system's slim lock is one pointer that starts as null; this keeps the system's header out of the many
/// files that only lock.
struct LockStorage {
    void* slimLock = nullptr;
};

struct RecursiveLockStorage {
    void* slimLock = nullptr;
    std::atomic<uint32_t> owner{0};  // thread identifier; 0 is never one
    uint32_t depth = 0;              // guarded by the slim lock
};

}  // namespace platform
