#include "platform/pipe.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>

namespace platform {

namespace {

// Bits of BrokenPipeGuard's memory.
constexpr uint64_t wasBlocked = 1;
constexpr uint64_t wasPending = 2;

sigset_t brokenPipeSignal() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool brokenPipeIsPending() {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
}

void takeBrokenPipeSignal(const sigset_t& signal) {
    const timespec atOnce{};
    while (sigtimedwait(&signal, nullptr, &atOnce) < 0 && errno == EINTR) {
    }
}

bool isDescriptor(PipeHandle pipe) {
    return pipe <= INT_MAX;
}

// Not inlined, so that a thread that is ended in a read or write has none of its stack marked as in use:
// nothing would tell the address sanitizer that it is not.
[[gnu::noinline]] void waitForEvent(int descriptor, short event) {
    pollfd entry{descriptor, event, 0};
    poll(&entry, 1, -1);  // its outcome doesn't matter: the next try tells
}

// Whether the call that has just failed is worth another try, after waiting for the descriptor if need be.
bool mayTryAgain(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    waitForEvent(descriptor, event);
    return true;
}

// Goes on after a write that took less than it was given. Apart, so that a write that took all is quick.
[[gnu::noinline]] bool writeOn(int descriptor, const uint8_t* bytes, uint32_t length, ssize_t count,
                               uint32_t& written) {
    while (count != 0) {
        if (count > 0) written += static_cast<uint32_t>(count);
        if (written == length) break;
        if (count < 0 && !mayTryAgain(descriptor, POLLOUT)) return written > 0;
        count = write(descriptor, bytes + written, length - written);
    }
    return true;
}

}  // namespace

BrokenPipeGuard::BrokenPipeGuard() {
    const sigset_t signal = brokenPipeSignal();
    sigset_t former;
    if (brokenPipeIsPending()) former_ |= wasPending;
    pthread_sigmask(SIG_BLOCK, &signal, &former);
    if (sigismember(&former, SIGPIPE) == 1) former_ |= wasBlocked;
}

BrokenPipeGuard::~BrokenPipeGuard() {
    const sigset_t signal = brokenPipeSignal();
    if ((former_ & wasPending) == 0 && brokenPipeIsPending()) takeBrokenPipeSignal(signal);
    if ((former_ & wasBlocked) == 0) pthread_sigmask(SIG_UNBLOCK, &signal, nullptr);
}

bool writePipe(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t& written) {
    written = 0;
    if (!isDescriptor(pipe)) return false;
    const int descriptor = static_cast<int>(pipe);
    const ssize_t count = write(descriptor, bytes, length);
    if (count != length) return writeOn(descriptor, bytes, length, count, written);
    written = length;
    return true;
}

bool writePipeInPieces(PipeHandle pipe, const uint8_t* bytes, uint32_t length, uint32_t pieceSize) {
    if (!isDescriptor(pipe)) return false;
    const int descriptor = static_cast<int>(pipe);
    while (length > 0) {
        const uint32_t piece = std::min(pieceSize, length);
        const ssize_t count = write(descriptor, bytes, piece);
        uint32_t written = 0;
        if (count != piece && !(writeOn(descriptor, bytes, piece, count, written) && written > 0)) return false;
        bytes += piece;
        length -= piece;
    }
    return true;
}

bool readPipe(PipeHandle pipe, uint8_t* bytes, uint32_t capacity, uint32_t& count) {
    count = 0;
    if (!isDescriptor(pipe)) return false;
    const int descriptor = static_cast<int>(pipe);
    ssize_t received;
    while ((received = read(descriptor, bytes, capacity)) < 0) {
        if (!mayTryAgain(descriptor, POLLIN)) return false;
    }
    count = static_cast<uint32_t>(received);
    return true;
}

}  // namespace platform
