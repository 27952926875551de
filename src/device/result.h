/// How every step of the library reports: by the value that it returns. An operation hands on what its last
/// step came to; its entry point writes the code for the caller, once.
#pragma once

#include <zprusb.h>

namespace device {

struct [[nodiscard]] Result {
    /// Leaves the caller's code as it is.
    static constexpr uint16_t noCode = 0xFFFF;

    bool success = false;
    uint16_t code = noCode;  // of ::zprusb_resultCode; a success may have one other than 0

    constexpr explicit operator bool() const { return success; }
};

constexpr Result done{true, ZPRUSB_SUCCESS};

constexpr Result failure(uint16_t code) {
    return {false, code};
}

}  // namespace device
