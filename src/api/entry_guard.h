#pragma once

#include "platform/cancellation.h"

namespace api {

/// Stands around every entry point. It gives up what the calling thread has lost of its printers since its last
/// call, holds the API lock, unless the entry point runs without it, and sees to
/// it that nothing from outside leaves a call half done. A thread that is cancelled goes on until its call has
/// returned. The child of a fork finds the library as if it had never been opened, whatever the parent's other
/// threads were doing; the parent's devices and objects are neither closed nor freed there.
class EntryGuard {
public:
    explicit EntryGuard(bool locked = true);
    ~EntryGuard();
    EntryGuard(const EntryGuard&) = delete;
    EntryGuard& operator=(const EntryGuard&) = delete;

private:
    const platform::CancellationGuard uncancelled_;
    const bool locked_;
};

}  // namespace api
