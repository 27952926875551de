#include "platform/lock.h"

#include "deadline.h"

namespace platform {

void Lock::enter() {
    pthread_mutex_lock(&storage_.mutex);
}

void Lock::leave() {
    pthread_mutex_unlock(&storage_.mutex);
}

void Condition::wait(Lock& lock, uint32_t milliseconds) {
    const timespec limit = toTimespec(after(milliseconds));
    pthread_cond_clockwait(&storage_.condition, &lock.storage_.mutex, CLOCK_MONOTONIC, &limit);
}

void Condition::wakeOne() {
    pthread_cond_signal(&storage_.condition);
}

}  // namespace platform
