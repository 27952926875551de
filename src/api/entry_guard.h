#pragma once

#include "device/api_lock.h"
#include "platform/cancellation.h"

namespace api {

/// Stands around every entry point. It gives up what the calling thread has lost of its printers since its last
/// call, holds the API lock for those that run with it, and sees to it that nothing from outside leaves a call
/// half done: a thread that is cancelled goes on until its call has returned, and the child of a fork finds the
/// library as if it had never been opened, whatever the parent's other threads were doing. The parent's devices
/// and objects are neither closed nor freed there.
class EntryGuard {
public:
    explicit EntryGuard(bool locked);
    ~EntryGuard();
    EntryGuard(const EntryGuard&) = delete;
    EntryGuard& operator=(const EntryGuard&) = delete;

private:
    const platform::CancellationGuard uncancelled_;
    const bool locked_;
};

/// The one that holds the API lock. What the guard does depends on a flag, which the check of the locks can't
/// follow: so it takes the promise, and doesn't look at how it is kept.
class SCOPED_CAPABILITY LockedEntryGuard : EntryGuard {
public:
    LockedEntryGuard() ACQUIRE(device::apiLock) NO_THREAD_SAFETY_ANALYSIS : EntryGuard(true) {}
    ~LockedEntryGuard() RELEASE() NO_THREAD_SAFETY_ANALYSIS {}
};

}  // namespace api
