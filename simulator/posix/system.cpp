#include "system.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace simulator {

std::thread startThread(std::function<void()> body) {
    sigset_t all, former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);  // the new thread inherits the mask
    std::thread thread(std::move(body));
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return thread;
}

void notifyDeviceChange() {
    const std::string name = "zprusb-device-change-" + std::to_string(getpid());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), address.sun_path + 1);  // a leading zero: the abstract namespace
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (sender < 0) return;
    // Nobody may be listening, which is no fault.
    (void)sendto(sender, "change", 6, 0, reinterpret_cast<const sockaddr*>(&address), size);
    close(sender);
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
