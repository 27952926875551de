/// The file behind a named mutex: the kernel's lock on it is the mutex between processes, and its one byte
/// tells the next owner whether the last one let go properly.
///
/// Nothing in the file is followed or believed beyond that byte, since every user of the machine may write it.
/// It stays when nobody uses it any more: removing it could not be made safe against somebody opening it.
#pragma once

namespace platform {

struct LockFile {
    char path[160];
    int descriptor = -1;
};

/// Puts together the path for a mutex name of any length and any characters.
void nameLockFile(LockFile& file, const char* mutexName);

/// Opens the file, making it when it is missing.
bool openLockFile(LockFile& file);

void closeLockFile(LockFile& file);

enum class LockAttempt {
    locked,
    lockedAfterAbandon,  ///< the last owner went without letting go properly
    heldElsewhere,
    impossible,
};

/// Opens the file first when it is closed, and anew when somebody has removed or replaced it meanwhile.
LockAttempt tryLockFile(LockFile& file);

/// Notes that the owner lets go properly; without it the next owner is told that this one did not.
void noteProperEnd(const LockFile& file);

void unlockFile(const LockFile& file);

}  // namespace platform
