/// The file behind a named mutex: the kernel's lock on its first byte is the mutex between processes.
///
/// All else in it is a hint, since every user of the machine may write it and take locks on it:
///   byte 0       tells the next owner whether the last one let go properly
///   byte 1       those who wait hold a shared lock on it, for the owner to see that they do
///   bytes 4 to 7 change when an owner lets go; who waits sleeps on them as on a futex
/// The last are reached through system calls only. A process that read the mapped file would be killed when
/// somebody has cut it off; a call gets an error.
///
/// Who stops using the file removes it, while holding its lock. Whoever has it open looks after each locking
/// whether it has its name still, so nobody owns a file that others don't find.
#pragma once

#include <sys/types.h>

#include <cstdint>

#include "deadline.h"

namespace platform {

struct LockFile {
    char name[128];
    char path[160];
    int descriptor = -1;
    dev_t device = 0;
    ino_t number = 0;
    void* mapping = nullptr;  // only its address is used
};

/// Puts together the file's name for a mutex name of any length and any characters.
void nameLockFile(LockFile& file, const char* mutexName);

void closeLockFile(LockFile& file);

/// Closes the file, and removes it when nobody owns it or waits for it. It stays when it belongs to another
/// user, and when its last owner did not let go properly, for the next one to be told.
void removeLockFile(LockFile& file);

enum class LockAttempt {
    locked,
    lockedAfterAbandon,  ///< the last owner went without letting go properly
    heldElsewhere,
    impossible,
};

/// Opens the file first when it is closed, making it when it is missing; and anew when somebody has removed,
/// renamed or replaced it meanwhile.
LockAttempt tryLockFile(LockFile& file);

/// Notes that the owner lets go properly; without it the next owner is told that this one did not.
void noteProperEnd(const LockFile& file);

/// Wakes one of the processes that wait.
/// @return whether there is any.
bool unlockFile(LockFile& file);

/// Shows other processes that this one waits; tryLockFile() may lose the announcement with a file that it
/// closes.
void announceWaiting(const LockFile& file);
void withdrawWaiting(const LockFile& file);

/// Whether a process waits for the file while none holds it.
bool isDueToAnother(const LockFile& file);

/// To be asked before an attempt; sleepUntilRelease() then misses no release after it.
uint32_t lastRelease(const LockFile& file);

/// Returns when an owner lets go, at the latest at the given moment, and now and then without a reason. Owners
/// that are killed wake nobody.
void sleepUntilRelease(LockFile& file, uint32_t lastRelease, Moment limit);

}  // namespace platform
