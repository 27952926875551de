/// Mutexes that all processes of the machine share by name. They belong to the thread that obtained them, which
/// may obtain them again and has to release them as often. An owner that ends without a release, by whatever
/// means, abandons its mutexes; the next one that waits is told so.
#pragma once

#include <cstdint>

namespace platform {

/// Counted: each openNamedMutex() and shareNamedMutex() needs one closeNamedMutex(), and whoever waits needs
/// one of them until the wait has ended. When the process closes its last one, the ownership of its threads
/// ends as after a release. Windows has one exception: a mutex that another process has open as well stays the
/// owner's until that thread calls releaseClosedMutexes() or ends. The child of a fork owns nothing that its
/// parent owned; the uses that it inherits open the mutex anew.
struct NamedMutex;

/// Opens the mutex of that name, creating it (owned by nobody) when no process has it open.
/// @param name any text; on Windows one without a backslash.
/// @return null when the system refuses the name or has no memory.
NamedMutex* openNamedMutex(const char* name);

/// One more use of the same mutex, for a holder of its own. Accepts null and returns its argument.
NamedMutex* shareNamedMutex(NamedMutex* mutex);

/// Accepts null.
void closeNamedMutex(NamedMutex* mutex);

/// Ends the ownership of whichever thread of this process has it, however often that thread has obtained it, as
/// after a release. On Windows another thread than the calling one keeps it until it calls
/// releaseClosedMutexes(). Accepts null.
void revokeNamedMutex(NamedMutex* mutex);

/// Gives up what the calling thread still owns although the process has closed or revoked it. Costs next to
/// nothing when there is no such mutex.
void releaseClosedMutexes();

enum class MutexWait {
    obtained,   ///< the caller owns it
    abandoned,  ///< the caller owns it; the last owner ended without a release. Linux tells so even when nobody
                ///< had it open in between
    timedOut,   ///< the caller doesn't own it
    failed,     ///< the caller doesn't own it, and waiting longer won't help; also for null
};

/// @param milliseconds how long to wait at most; `forever` of platform/thread.h waits without limit.
MutexWait waitForNamedMutex(NamedMutex* mutex, uint32_t milliseconds);

/// Takes back one obtaining of the calling thread.
/// @return false, and nothing has changed, when the calling thread doesn't own it; also for null.
bool releaseNamedMutex(NamedMutex* mutex);

/// Whether a thread of this process owns it, the calling one or another; false for null.
bool isOwnedByThisProcess(NamedMutex* mutex);

/// Whether the calling thread owns any.
bool threadOwnsNamedMutex();

}  // namespace platform
