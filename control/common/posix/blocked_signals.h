#pragma once

#include <pthread.h>
#include <signal.h>

namespace control {

/// While it lives, threads that are started take no signal of the process: they inherit the mask.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &former_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t former_;
};

}  // namespace control
