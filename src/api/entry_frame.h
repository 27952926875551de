/// The frame through which every entry point that acts on a printer reaches its object.
#pragma once

#include "api/entry_guard.h"
#include "api/object_table.h"
#include "device/result.h"

namespace api {

struct Frame {
    bool locked;       // holds the ApiLock for the whole run
    unsigned retries;  // how often a failed operation is tried again, at once and whatever its code
};

constexpr Frame lockedFrame{true, 0};
constexpr Frame retryingFrame{true, 3};
constexpr Frame lockFreeFrame{false, 0};

/// Runs an operation, which reports its own code, on the calling thread's object. Without one, gives 1501.
template <class Operation>
uint32_t onPrinter(const Frame& frame, uint16_t* resultCode, Operation operation) {
    const EntryGuard guard(frame.locked);
    const ObjectUse object(findThreadSlot());
    if (!object) {
        device::setResult(resultCode, ZPRUSB_NO_OBJECT);
        return 0;
    }
    bool success = operation(*object);
    for (unsigned retry = 0; !success && retry < frame.retries; ++retry) success = operation(*object);
    return success;
}

/// The same for an operation whose last parameter is the result code.
template <class... Parameters, class... Arguments>
uint32_t run(const Frame& frame, uint16_t* resultCode, bool (*operation)(device::PrinterObject&, Parameters...),
             const Arguments&... arguments) {
    return onPrinter(frame, resultCode, [&](device::PrinterObject& printer) {
        return operation(printer, arguments..., resultCode);
    });
}

}  // namespace api
