/// How every step of the library reports: a verdict as its return value, and a code of ::zprusb_resultCode
/// through a pointer that may be null. The last code written wins.
#pragma once

#include <zprusb.h>

namespace device {

inline void setResult(uint16_t* resultCode, uint16_t code) {
    if (resultCode != nullptr) *resultCode = code;
}

/// Reports a failure with this code.
inline bool fail(uint16_t code, uint16_t* resultCode) {
    setResult(resultCode, code);
    return false;
}

}  // namespace device
