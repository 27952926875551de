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

// A number that no descriptor has gives one that every call refuses.
int descriptorOf(PipeHandle pipe) {
    return pipe <= INT_MAX ? static_cast<int>(pipe) : -1;
}

// Here and below: where a thread may be ended by force, none of its stack is marked as in use, since nothing
// would tell the address sanitizer that it no longer is.
[[gnu::no_sanitize_address]] short waitForEvent(int descriptor, short event) {
    pollfd entry{descriptor, event, 0};
    poll(&entry, 1, -1);
    return entry.revents;
}

// Whether the call that has just failed is worth another try, after waiting for the descriptor if need be.
bool mayTryAgain(int descriptor, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
    waitForEvent(descriptor, event);  // its outcome doesn't matter: the next try tells
    return true;
}

// False when the other end has gone meanwhile, as it need not have taken everything.
bool waitForRoom(const std::atomic<PipeHandle>& pipe) {
    short outcome;
    do {
        const int descriptor = descriptorOf(pipe);
        if (descriptor < 0) return false;
        outcome = waitForEvent(descriptor, POLLOUT);
    } while (outcome == 0 && errno == EINTR);
    return outcome == POLLOUT || outcome == 0;  // 0: nothing can be waited for, as without any descriptors
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

[[gnu::no_sanitize_address]] bool writePipe(const std::atomic<PipeHandle>& pipe, const uint8_t* bytes,
                                            uint32_t length, uint32_t& written, uint32_t chunkSize) {
    written = 0;
    do {
        const int descriptor = descriptorOf(pipe);
        const ssize_t count = write(descriptor, bytes + written, std::min(chunkSize, length - written));
        if (count > 0) {
            written += static_cast<uint32_t>(count);
        } else if (count == 0 || !mayTryAgain(descriptor, POLLOUT)) {
            return false;
        }
    } while (written < length);
    return waitForRoom(pipe);
}

[[gnu::no_sanitize_address]] bool readPipe(const std::atomic<PipeHandle>& pipe, uint8_t* bytes,
                                           uint32_t capacity, uint32_t& count) {
    count = 0;
    for (;;) {
        const int descriptor = descriptorOf(pipe);
        const ssize_t received = read(descriptor, bytes, capacity);
        if (received >= 0) {
            count = static_cast<uint32_t>(received);
            return true;
        }
        if (!mayTryAgain(descriptor, POLLIN)) return false;
    }
}

}  // namespace platform
