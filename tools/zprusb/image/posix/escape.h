/// Calls of C libraries that report failures by a jump.
#pragma once

#include <csetjmp>

namespace tool {

/// @param action calls the library and nothing that would have to be cleaned up.
/// @return false when the library jumped to `escape`.
template <class Action>
bool succeeds(std::jmp_buf& escape, const Action& action) {
    if (setjmp(escape) != 0) return false;
    action();
    return true;
}

}  // namespace tool
