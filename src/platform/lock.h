/// Locks between the threads of one process. Both kinds need no start and no end, so they can stand in static
/// storage without a constructor or destructor that runs.
#pragma once

#include <cstdint>

#include "lock_storage.h"  // one for each system, found by the include path

namespace platform {

/// Held for a few instructions only, never while its holder waits or transfers. Not recursive.
class Lock {
public:
    constexpr Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    void enter();
    void leave();

private:
    LockStorage storage_;
};

/// A thread that holds it may enter it again, and has to leave it as often as it entered.
class RecursiveLock {
public:
    constexpr RecursiveLock() = default;
    RecursiveLock(const RecursiveLock&) = delete;
    RecursiveLock& operator=(const RecursiveLock&) = delete;
    void enter();
    void leave();

private:
    RecursiveLockStorage storage_;
};

/// Holds a lock for as long as it lives.
template <class AnyLock>
class Holding {
public:
    explicit Holding(AnyLock& lock) : lock_(lock) { lock_.enter(); }
    ~Holding() { lock_.leave(); }
    Holding(const Holding&) = delete;
    Holding& operator=(const Holding&) = delete;

private:
    AnyLock& lock_;
};

}  // namespace platform
