/// Threads that can be waited for with a time limit and, as a last resort, be ended by force.
#pragma once

#include <cstdint>

namespace platform {

constexpr uint32_t forever = 0xFFFFFFFF;

/// A started thread. Every thread blocks all signals of the process, and keeps the library's image loaded for
/// as long as it runs.
struct Thread;

/// Starts a thread that runs `body(argument)` with the default stack size.
/// A body that may be ended by force must do nothing but one blocking read or write of platform/pipe.h and
/// stores into its argument: no heap, no lock, no object with a destructor. What it reads into and counts with
/// belongs to its argument as well, not to its stack.
/// Each thread needs one closeThread(), also after its end by force.
/// @return null when the system starts no more threads; the argument is then the caller's alone.
Thread* startThread(void (*body)(void* argument), void* argument);

/// @param milliseconds how long to wait at most, measured by a clock that nobody sets; `forever` is allowed.
/// @return whether the body has ended. All that it wrote is then visible to the caller.
bool waitForThread(Thread* thread, uint32_t milliseconds);

/// Ends a thread that is blocked in a read or write: first by asking the system to cancel the call, then by
/// ending the thread itself. Takes about a second at most.
/// @return true: the thread is gone, and its argument is the caller's alone. False: nothing wakes the thread,
///         or the system lacks what ends one (libgcc_s on Linux, looked for from the first start of a thread
///         on); it is left behind for ever, and its argument with it. Nobody may touch or free that any more.
bool endThreadByForce(Thread* thread);

/// Gives up the caller's side of the thread. One that has not ended goes on; on Linux its stack is never used
/// again.
void closeThread(Thread* thread);

/// Whether endThreadByForce() has ever left a thread of this process behind. Code that such a thread may
/// return into must stay loaded.
bool threadsWereLeftBehind();

/// The calling thread's identifier, unique among the running threads of the machine; never 0xFFFFFFFF.
uint32_t currentThreadId();

uint32_t currentProcessId();

void sleepMilliseconds(uint32_t milliseconds);

}  // namespace platform
