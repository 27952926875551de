#include "lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "deadline.h"

namespace platform {

namespace {

constexpr char letGo = '0';
constexpr char owned = '1';
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

// Never with O_CREAT: in a folder that all users share, the kernel may refuse that for a file that another
// user owns, even to root.
int openExisting(const char* path) {
    const int descriptor = open(path, openFlags);
    if (descriptor < 0) return -1;
    struct stat status;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
    close(descriptor);
    errno = EINVAL;
    return -1;
}

void temporaryName(char (&name)[256], const char* path) {
    static std::atomic<uint32_t> counter{0};
    std::snprintf(name, sizeof name, "%s.%d.%" PRIu32 ".%" PRId64, path, getpid(), counter.fetch_add(1), now());
}

bool mark(int descriptor, char marker) {
    return pwrite(descriptor, &marker, 1, 0) == 1;
}

// The file gets its name when it is complete: with its marker, so that no full disk keeps a later owner from
// writing it, and open to all users whatever the umask says. Fails with EEXIST when another process was faster.
int makeNew(const char* path) {
    char temporary[256];
    temporaryName(temporary, path);
    const int descriptor = open(temporary, openFlags | O_CREAT | O_EXCL, 0600);
    if (descriptor < 0) return -1;
    const bool made = mark(descriptor, letGo) && fchmod(descriptor, 0666) == 0 && link(temporary, path) == 0;
    const int error = errno;
    unlink(temporary);
    if (made) return descriptor;
    close(descriptor);
    errno = error;
    return -1;
}

// A lock of the open file, not of the process: closing another descriptor of the same file doesn't end it.
bool setLock(int descriptor, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_len = 1;
    int result;
    do {
        result = fcntl(descriptor, F_OFD_SETLK, &range);
    } while (result < 0 && errno == EINTR);
    return result == 0;
}

// It has one name for as long as nobody removes or replaces it.
bool isStillNamed(const LockFile& file) {
    struct stat opened;
    return fstat(file.descriptor, &opened) == 0 && opened.st_nlink > 0;
}

LockAttempt markOwned(const LockFile& file) {
    char marker = letGo;
    const bool abandoned = pread(file.descriptor, &marker, 1, 0) == 1 && marker == owned;
    mark(file.descriptor, owned);
    return abandoned ? LockAttempt::lockedAfterAbandon : LockAttempt::locked;
}

}  // namespace

void nameLockFile(LockFile& file, const char* mutexName) {
    const std::string_view name(mutexName);
    char safe[97] = {};
    std::transform(name.begin(), name.begin() + static_cast<ptrdiff_t>(std::min(name.size(), sizeof safe - 1)),
                   safe, [](char letter) { return isSafe(letter) ? letter : '_'; });
    std::snprintf(file.path, sizeof file.path, "/dev/shm/zprusb-%s-%016" PRIx64 ".lock", safe, hashOf(name));
}

bool openLockFile(LockFile& file) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        file.descriptor = openExisting(file.path);
        if (file.descriptor < 0 && errno == ENOENT) file.descriptor = makeNew(file.path);
        if (file.descriptor >= 0) return true;
        if (errno != EEXIST && errno != ENOENT && errno != EINTR) return false;
    }
    return false;
}

void closeLockFile(LockFile& file) {
    if (file.descriptor >= 0) close(file.descriptor);
    file.descriptor = -1;
}

LockAttempt tryLockFile(LockFile& file) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (file.descriptor < 0 && !openLockFile(file)) return LockAttempt::impossible;
        if (!setLock(file.descriptor, F_WRLCK)) {
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

void unlockFile(const LockFile& file) {
    setLock(file.descriptor, F_UNLCK);
}

}  // namespace platform
