#include "system.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include "abstract_address.h"
#include "common/posix/blocked_signals.h"

namespace simulator {

std::thread startThread(std::function<void()> body) {
    const control::BlockedSignals blocked;
    return std::thread(std::move(body));
}

namespace {

// The socket's name is the number's mark, so the socket stays open.
uint32_t claimNumber() {
    const int mark = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    for (uint32_t number = 1;; ++number) {
        const AbstractAddress address("zprusb-simulator-" + std::to_string(number));
        if (bind(mark, address.get(), address.size()) == 0) return number;
        if (errno == EADDRINUSE) continue;
        const int error = errno;
        if (mark >= 0) close(mark);
        throw std::system_error(error, std::generic_category(), "socket");
    }
}

}  // namespace

uint32_t processNumber() {
    static const uint32_t number = claimNumber();
    return number;
}

std::optional<std::filesystem::path> pathFromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

bool moveToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno == EEXIST) return false;
    throw std::system_error(errno, std::generic_category(), to.string());
}

void stayLoaded() {}  // the linker's -z nodelete has seen to it

}  // namespace simulator
