/// The frame through which every entry point that acts on a printer reaches its object.
#pragma once

#include "api/entry_guard.h"
#include "api/object_table.h"
#include "device/result.h"

namespace api {

struct Frame {
    bool locked;       // holds the API lock for the whole run
    unsigned retries;  // how often a failed operation is tried again, at once and whatever its code
};

constexpr Frame lockedFrame{true, 0};
constexpr Frame retryingFrame{true, 3};
constexpr Frame lockFreeFrame{false, 0};

/// Writes what a call came to for the caller.
/// @return what the entry point returns.
inline uint32_t report(device::Result result, uint16_t* resultCode) {
    if (resultCode != nullptr && result.code != device::Result::noCode) *resultCode = result.code;
    return result.success;
}

/// Runs an operation on the calling thread's object; without one, the result is 1501. The check of the locks
/// doesn't see which operations need the API lock: each entry point chooses the frame that has it.
template <class Operation, class... Arguments>
device::Result run(unsigned retries, const Operation& operation, const Arguments&... arguments) {
    const ObjectUse object(findThreadSlot());
    if (!object) return device::failure(ZPRUSB_NO_OBJECT);
    device::Result result = operation(*object, arguments...);
    for (unsigned retry = 0; !result && retry < retries; ++retry) result = operation(*object, arguments...);
    return result;
}

/// What an entry point with a result code is: its frame and its operation.
template <class Operation, class... Arguments>
uint32_t call(const Frame& frame, uint16_t* resultCode, const Operation& operation,
              const Arguments&... arguments) {
    const EntryGuard guard(frame.locked);
    return report(run(frame.retries, operation, arguments...), resultCode);
}

}  // namespace api
