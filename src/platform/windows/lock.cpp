#include "platform/lock.h"

#include "system.h"

namespace platform {

namespace {

// The storage is kept as a plain pointer, which is what the system defines the lock to be.
SRWLOCK* slim(void*& storage) {
    static_assert(sizeof(SRWLOCK) == sizeof(void*));
    return reinterpret_cast<SRWLOCK*>(&storage);
}

}  // namespace

void Lock::enter() {
    AcquireSRWLockExclusive(slim(storage_.slimLock));
}

void Lock::leave() {
    ReleaseSRWLockExclusive(slim(storage_.slimLock));
}

void RecursiveLock::enter() {
    const uint32_t self = GetCurrentThreadId();
    // Another thread never stores this thread's number, so a stale value can't be mistaken for it.
    if (storage_.owner.load(std::memory_order_relaxed) != self) {
        AcquireSRWLockExclusive(slim(storage_.slimLock));
        storage_.owner.store(self, std::memory_order_relaxed);
    }
    ++storage_.depth;
}

void RecursiveLock::leave() {
    if (--storage_.depth > 0) return;
    storage_.owner.store(0, std::memory_order_relaxed);
    ReleaseSRWLockExclusive(slim(storage_.slimLock));
}

}  // namespace platform
