#include "common/device_change.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>

#include "common/posix/descriptor.h"

namespace control {

void notifyDeviceChange() {
    const Descriptor sender(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    char* name = address.sun_path + 1;  // a first byte of zero: a name that no file stands for
    const int length = std::snprintf(name, sizeof address.sun_path - 1, "zprusb-device-change-%d", getpid());
    const size_t size = offsetof(sockaddr_un, sun_path) + 1 + static_cast<size_t>(length);
    // Nobody may be listening, which is no fault.
    (void)sendto(sender.get(), "change", 6, 0, reinterpret_cast<const sockaddr*>(&address),
                 static_cast<socklen_t>(size));
}

}  // namespace control
