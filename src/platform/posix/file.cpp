#include "platform/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace platform {

namespace {

/// A path in the system's way of writing; empty when it is longer than the system takes.
struct NativePath {
    explicit NativePath(const char* path) {
        const size_t length = std::strlen(path);
        if (length >= sizeof text) return;
        std::replace_copy(path, path + length, text, '\\', '/');
    }
    char text[PATH_MAX] = "";
};

// Opens without waiting, as a pipe's other end might never come. The lock keeps readers and writers apart.
int openRegularFile(const char* path, int flags, int sharing) {
    const int descriptor = ::open(NativePath(path).text, flags | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor < 0) return -1;
    struct stat status {};
    const bool isRegular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const bool isTaken = isRegular && flock(descriptor, sharing | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (isRegular && !isTaken) return descriptor;
    ::close(descriptor);
    return -1;
}

}  // namespace

bool File::open(const char* path) {
    close();
    handle_ = openRegularFile(path, O_RDONLY, LOCK_SH);
    return isOpen();
}

bool File::create(const char* path) {
    close();
    handle_ = openRegularFile(path, O_WRONLY | O_CREAT, LOCK_EX);
    if (isOpen() && ftruncate(static_cast<int>(handle_), 0) != 0) close();
    return isOpen();
}

bool File::size(uint32_t& bytes) const {
    struct stat status {};
    if (fstat(static_cast<int>(handle_), &status) != 0 || status.st_size > UINT32_MAX) return false;
    bytes = static_cast<uint32_t>(status.st_size);
    return true;
}

bool File::rewind() {
    return lseek(static_cast<int>(handle_), 0, SEEK_SET) == 0;
}

bool File::read(uint8_t* bytes, uint32_t capacity, uint32_t& count) {
    ssize_t received;
    do {
        received = ::read(static_cast<int>(handle_), bytes, capacity);
    } while (received < 0 && errno == EINTR);
    count = received > 0 ? static_cast<uint32_t>(received) : 0;
    return received >= 0;
}

bool File::write(const uint8_t* bytes, uint32_t length) {
    while (length > 0) {
        const ssize_t count = ::write(static_cast<int>(handle_), bytes, length);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes += count;
        length -= static_cast<uint32_t>(count);
    }
    return true;
}

void File::close() {
    if (isOpen()) ::close(static_cast<int>(handle_));
    handle_ = none;
}

std::FILE* appendToFile(const char* path) {
    return std::fopen(NativePath(path).text, "ae");
}

bool fileExists(const char* path) {
    return access(NativePath(path).text, F_OK) == 0;
}

}  // namespace platform
