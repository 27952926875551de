#include "fake_pipe.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
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

std::optional<Bytes> receivePiece(uint64_t testEnd) {
    Bytes piece(65536);
    const ssize_t count = recv(static_cast<int>(testEnd), piece.data(), piece.size(), 0);
    if (count <= 0) return std::nullopt;
    piece.resize(static_cast<size_t>(count));
    return piece;
}

bool sendBytes(uint64_t testEnd, const Bytes& bytes) {
    return send(static_cast<int>(testEnd), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

void hangUp(uint64_t testEnd) {
    shutdown(static_cast<int>(testEnd), SHUT_RDWR);
}

void closeEnd(uint64_t end) {
    close(static_cast<int>(end));
}

uint32_t openHandleCount() {
    using Iterator = std::filesystem::directory_iterator;
    return static_cast<uint32_t>(std::distance(Iterator("/proc/self/fd"), Iterator()));
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
