#include "platform/pipe.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

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
    uint32_t done = 0;
    bool failed = false;
    while (done < length && !failed) {
        const ssize_t count = write(descriptor, bytes + done, length - done);
        if (count == 0) break;
        if (count > 0) {
            done += static_cast<uint32_t>(count);
        } else {
            failed = !mayTryAgain(descriptor, POLLOUT);
        }
    }
    written = done;
    return done > 0 || !failed;
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
