/// Locks between the threads of one process, and waiting with one. They need no start and no end, so they can
/// stand in static storage without a constructor or destructor that runs.
#pragma once

#include <cstdint>

#include "lock_storage.h"  // one for each system, found by the include path
#include "platform/thread_safety.h"

namespace platform {

/// Held for a few instructions only, never while its holder waits or transfers. Not recursive.
class CAPABILITY("lock") Lock {
public:
    constexpr Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    void enter() ACQUIRE();
    void leave() RELEASE();

private:
    friend class Condition;
    LockStorage storage_;
};

/// Where a thread waits, with a Lock held, for what another thread does under that lock. A wait may end without
/// reason: what is waited for has to be looked at again.
class Condition {
public:
    constexpr Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    /// Leaves the lock while it waits.
    /// @param milliseconds how long to wait at most; `forever` of platform/thread.h waits without limit.
    void wait(Lock& lock, uint32_t milliseconds) REQUIRES(lock);

    void wakeOne();

private:
    ConditionStorage storage_;
};

/// Holds a lock for as long as it lives.
template <class AnyLock>
class SCOPED_CAPABILITY Holding {
public:
    explicit Holding(AnyLock& lock) ACQUIRE(lock) : lock_(lock) { lock_.enter(); }
    ~Holding() RELEASE() { lock_.leave(); }
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

private:
    AnyLock& lock_;
};

}  // namespace platform
