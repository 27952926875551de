#include "platform/lock.h"

#include "platform/thread.h"
#include "system.h"

namespace platform {

namespace {

// The storage is kept as a plain pointer, which is what the system defines both to be.
SRWLOCK* slim(void*& storage) {
    static_assert(sizeof(SRWLOCK) == sizeof(void*));
    return reinterpret_cast<SRWLOCK*>(&storage);
}

CONDITION_VARIABLE* variable(void*& storage) {
    static_assert(sizeof(CONDITION_VARIABLE) == sizeof(void*));
    return reinterpret_cast<CONDITION_VARIABLE*>(&storage);
}

}  // namespace

void Lock::enter() {
    AcquireSRWLockExclusive(slim(storage_.slimLock));
}

void Lock::leave() {
    ReleaseSRWLockExclusive(slim(storage_.slimLock));
}

void Condition::wait(Lock& lock, uint32_t milliseconds) {
    static_assert(forever == INFINITE);
    SleepConditionVariableSRW(variable(storage_.condition), slim(lock.storage_.slimLock), milliseconds, 0);
}

void Condition::wakeOne() {
    WakeConditionVariable(variable(storage_.condition));
}

}  // namespace platform
