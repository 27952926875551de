#include "lock_file.h"

#include <fcntl.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <string_view>

namespace platform {

namespace {

constexpr char letGo = '0';
constexpr char owned = '1';
constexpr off_t ownersByte = 0;
constexpr off_t waitersByte = 1;
constexpr off_t releaseWord = 4;
constexpr size_t mappedSize = 8;
constexpr int attempts = 100;  // against somebody who makes and removes the file all the time
constexpr int openFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

bool isSafe(char letter) {
    return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
           (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '_';
}

// FNV-1a. It tells names apart whose safe parts are the same.
uint64_t hashOf(std::string_view text) {
    uint64_t hash = 14695981039346656037u;
    for (char letter : text) hash = (hash ^ static_cast<unsigned char>(letter)) * 1099511628211u;
    return hash;
}

// The package's folder, in which nothing clears the files of a user who logs out, as some systems do below the
// other one. Only the system's administrator can have made it as it has to be.
const char* lockFolder() {
    constexpr const char* ofPackage = "/run/lock/zprusb";
    constexpr mode_t sharedByAll = S_IFDIR | S_ISVTX | 0777;
    struct stat status;
    const bool made = lstat(ofPackage, &status) == 0 && status.st_uid == 0 && status.st_mode == sharedByAll;
    return made ? ofPackage : "/dev/shm";
}

bool mark(int descriptor, char marker) {
    return pwrite(descriptor, &marker, 1, ownersByte) == 1;
}

// The first way is not open to every user on every kernel, the second needs the processes' file system.
bool giveName(int descriptor, const char* path) {
    if (linkat(descriptor, "", AT_FDCWD, path, AT_EMPTY_PATH) == 0) return true;
    if (errno == EEXIST) return false;
    char self[32];
    std::snprintf(self, sizeof self, "/proc/self/fd/%d", descriptor);
    return linkat(AT_FDCWD, self, AT_FDCWD, path, AT_SYMLINK_FOLLOW) == 0;
}

// The file gets its name when it is complete: with its marker, so that no full disk keeps a later owner from
// writing it, and open to all users whatever the umask says. Without a name it doesn't outlive this process.
// Fails with EEXIST when another process was faster.
int makeNew(const char* folder, const char* path) {
    const int descriptor = open(folder, O_TMPFILE | openFlags, 0600);
    if (descriptor < 0) return -1;
    if (mark(descriptor, letGo) && fchmod(descriptor, 0666) == 0 && giveName(descriptor, path))
        return descriptor;
    const int error = errno;
    close(descriptor);
    errno = error;
    return -1;
}

bool isRegular(LockFile& file) {
    struct stat status;
    if (fstat(file.descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return false;
    file.device = status.st_dev;
    file.number = status.st_ino;
    return true;
}

// Never with O_CREAT: in a folder that all users share, the kernel may refuse that for a file that another
// user owns, even to root.
bool openLockFile(LockFile& file) {
    const char* const folder = lockFolder();
    std::snprintf(file.path, sizeof file.path, "%s/%s", folder, file.name);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        file.descriptor = open(file.path, openFlags);
        if (file.descriptor < 0 && errno == ENOENT) file.descriptor = makeNew(folder, file.path);
        if (file.descriptor >= 0) {
            if (isRegular(file)) return true;
            closeLockFile(file);
            return false;
        }
        if (errno != EEXIST && errno != ENOENT && errno != EINTR) return false;
    }
    return false;
}

struct flock rangeOf(off_t byte, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    return range;
}

// A lock of the open file, not of the process: closing another descriptor of the same file doesn't end it.
bool setLock(const LockFile& file, off_t byte, short type) {
    struct flock range = rangeOf(byte, type);
    int result;
    do {
        result = fcntl(file.descriptor, F_OFD_SETLK, &range);
    } while (result < 0 && errno == EINTR);
    return result == 0;
}

bool isLockedElsewhere(const LockFile& file, off_t byte) {
    struct flock range = rangeOf(byte, F_WRLCK);
    return fcntl(file.descriptor, F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

// The number of a file that is open is given to no other.
bool isStillNamed(const LockFile& file) {
    struct stat named;
    return lstat(file.path, &named) == 0 && named.st_ino == file.number && named.st_dev == file.device;
}

bool isMarkedOwned(const LockFile& file) {
    char marker = letGo;
    return pread(file.descriptor, &marker, 1, ownersByte) == 1 && marker == owned;
}

LockAttempt markOwned(const LockFile& file) {
    const bool abandoned = isMarkedOwned(file);
    mark(file.descriptor, owned);
    return abandoned ? LockAttempt::lockedAfterAbandon : LockAttempt::locked;
}

// The kernel looks at the word for itself; nothing here does.
bool callFutex(LockFile& file, int operation, uint32_t value, const timespec* limit) {
    if (file.mapping == nullptr) {
        void* const mapping = mmap(nullptr, mappedSize, PROT_READ, MAP_SHARED, file.descriptor, 0);
        if (mapping == MAP_FAILED) return false;
        file.mapping = mapping;
    }
    const auto* word = static_cast<const char*>(file.mapping) + releaseWord;
    return syscall(SYS_futex, word, operation, value, limit, nullptr, FUTEX_BITSET_MATCH_ANY) >= 0;
}

void wakeWaiter(LockFile& file) {
    const auto release = static_cast<uint32_t>(now());
    if (pwrite(file.descriptor, &release, sizeof release, releaseWord) == sizeof release)
        callFutex(file, FUTEX_WAKE, 1, nullptr);
}

}  // namespace

void nameLockFile(LockFile& file, const char* mutexName) {
    const std::string_view name(mutexName);
    char safe[97] = {};
    std::transform(name.begin(), name.begin() + static_cast<ptrdiff_t>(std::min(name.size(), sizeof safe - 1)),
                   safe, [](char letter) { return isSafe(letter) ? letter : '_'; });
    std::snprintf(file.name, sizeof file.name, "zprusb-%s-%016" PRIx64 ".lock", safe, hashOf(name));
}

void closeLockFile(LockFile& file) {
    if (file.mapping != nullptr) munmap(file.mapping, mappedSize);
    file.mapping = nullptr;
    if (file.descriptor >= 0) close(file.descriptor);
    file.descriptor = -1;
}

void removeLockFile(LockFile& file) {
    if (file.descriptor >= 0 && !isLockedElsewhere(file, waitersByte) && setLock(file, ownersByte, F_WRLCK) &&
        !isMarkedOwned(file) && isStillNamed(file))
        unlink(file.path);
    closeLockFile(file);
}

LockAttempt tryLockFile(LockFile& file) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (file.descriptor < 0 && !openLockFile(file)) return LockAttempt::impossible;
        if (!setLock(file, ownersByte, F_WRLCK)) {
            return errno == EAGAIN || errno == EACCES ? LockAttempt::heldElsewhere : LockAttempt::impossible;
        }
        // The lock on a file that has lost its name keeps nobody out who opens the name now.
        if (isStillNamed(file)) return markOwned(file);
        closeLockFile(file);
    }
    return LockAttempt::heldElsewhere;
}

void noteProperEnd(const LockFile& file) {
    mark(file.descriptor, letGo);
}

bool unlockFile(LockFile& file) {
    setLock(file, ownersByte, F_UNLCK);
    const bool waitedFor = isLockedElsewhere(file, waitersByte);
    if (waitedFor) wakeWaiter(file);
    return waitedFor;
}

void announceWaiting(const LockFile& file) {
    setLock(file, waitersByte, F_RDLCK);
}

void withdrawWaiting(const LockFile& file) {
    setLock(file, waitersByte, F_UNLCK);
}

bool isDueToAnother(const LockFile& file) {
    return isLockedElsewhere(file, waitersByte) && !isLockedElsewhere(file, ownersByte);
}

uint32_t lastRelease(const LockFile& file) {
    uint32_t release = 0;
    return pread(file.descriptor, &release, sizeof release, releaseWord) == sizeof release ? release : 0;
}

void sleepUntilRelease(LockFile& file, uint32_t lastRelease, Moment limit) {
    const timespec end = toTimespec(limit);
    const bool woken = callFutex(file, FUTEX_WAIT_BITSET, lastRelease, &end);
    if (!woken && errno != ETIMEDOUT && errno != EAGAIN && errno != EINTR) sleepUntil(limit);
}

}  // namespace platform
