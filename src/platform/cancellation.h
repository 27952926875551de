/// Threads that others ask to end, which POSIX systems have.
#pragma once

namespace platform {

/// While it lives, the calling thread is not cancelled, neither at a call that waits nor, if the thread allows
/// that, at any instruction. A request waits until the last guard of the thread is gone.
class CancellationGuard {
public:
    CancellationGuard();
    ~CancellationGuard();
    CancellationGuard(const CancellationGuard&) = delete;
    CancellationGuard& operator=(const CancellationGuard&) = delete;

private:
    int former_ = 0;  // whether the thread could be cancelled before
};

}  // namespace platform
