/// The child of a fork, where a system has them: of the process's threads it has the one that forked, and of
/// its memory a copy that shows the others wherever they were. Windows has no such children, and nothing
/// happens.
#pragma once

#include <new>

namespace platform {

/// From now on, `function` runs in each forked child before anything else of the program does. Called twice, it
/// runs twice.
/// @return false when there is no memory.
bool runInForkedChildren(void (*function)());

/// Puts state that is initialised by constants back to its beginning, locks too: who held or awaited them is
/// not in the child. What the state owns is neither used nor freed.
template <class State>
void startAnew(State& state) {
    new (&state) State();
}

}  // namespace platform
