#include "fake_pipe.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace {

FakePipe makePair(int type) {
    int ends[2] = {-1, -1};
    socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends);
    return {static_cast<uint64_t>(ends[0]), static_cast<uint64_t>(ends[1])};
}

}  // namespace

FakePipe makeRequestPipe() {
    return makePair(SOCK_SEQPACKET);
}

FakePipe makeAnswerPipe() {
    return makePair(SOCK_STREAM);
}

uint64_t openNothing() {
    return static_cast<uint64_t>(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

void hangUp(uint64_t testEnd) {
    shutdown(static_cast<int>(testEnd), SHUT_RDWR);
}

void closeEnd(uint64_t end) {
    close(static_cast<int>(end));
}

void reportDeviceChange() {
    const std::string name = "zprusb-device-change-" + std::to_string(getpid());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), address.sun_path + 1);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    while (sendto(sender, "", 1, 0, reinterpret_cast<sockaddr*>(&address), length) < 0) usleep(1000);
    close(sender);
}

bool reportOtherDeviceEvent() {
    return false;
}
