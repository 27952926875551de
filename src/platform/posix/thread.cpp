#include "platform/thread.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "deadline.h"
#include "platform/memory.h"

namespace platform {

struct Thread {
    void (*body)(void* argument);
    void* argument;
    pthread_t id{};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t ended{};
    bool bodyEnded = false;     // guarded by mutex
    bool joinedOrLeft = false;  // the owner's: the system needs no more join or detach
    std::atomic<int> sides{2};  // the owner and the thread itself; the last one frees the record
};

namespace {

constexpr uint32_t cancelLimit = 1000;  // ms

std::atomic<bool> leftBehind{false};

void giveUpSide(Thread* thread) {
    if (thread->sides.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
    pthread_cond_destroy(&thread->ended);
    destroy(thread);
}

void markEnded(Thread& thread) {
    pthread_mutex_lock(&thread.mutex);
    thread.bodyEnded = true;
    pthread_cond_broadcast(&thread.ended);
    pthread_mutex_unlock(&thread.mutex);
}

// A cancellation unwinds this frame without running anything in it. That is why it must not come while the
// record is put in order.
void* run(void* record) {
    auto* thread = static_cast<Thread*>(record);
    thread->body(thread->argument);
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    markEnded(*thread);
    giveUpSide(thread);
    return nullptr;
}

// The new thread inherits the mask, so there is no moment in which it would take a signal.
bool createWithSignalsBlocked(Thread& thread) {
    sigset_t all, former;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &former);
    const bool created = pthread_create(&thread.id, nullptr, run, &thread) == 0;
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return created;
}

// Asks again and again: the system's join with a limit looks at the clock that people set.
bool joinWithin(Thread& thread, uint32_t milliseconds, void*& outcome) {
    const Moment limit = after(milliseconds);
    while (pthread_tryjoin_np(thread.id, &outcome) != 0) {
        if (now() >= limit) return false;
        sleepMilliseconds(1);
    }
    return true;
}

}  // namespace

Thread* startThread(void (*body)(void* argument), void* argument) {
    auto* thread = create<Thread>(body, argument);
    if (thread == nullptr) return nullptr;
    initCondition(thread->ended);
    if (createWithSignalsBlocked(*thread)) return thread;
    pthread_cond_destroy(&thread->ended);
    destroy(thread);
    return nullptr;
}

bool waitForThread(Thread* thread, uint32_t milliseconds) {
    const Moment limit = after(milliseconds);
    pthread_mutex_lock(&thread->mutex);
    while (!thread->bodyEnded && waitOn(thread->ended, thread->mutex, limit)) {
    }
    const bool ended = thread->bodyEnded;
    pthread_mutex_unlock(&thread->mutex);
    return ended;
}

bool endThreadByForce(Thread* thread) {
    void* outcome = nullptr;
    pthread_cancel(thread->id);
    thread->joinedOrLeft = true;
    if (!joinWithin(*thread, cancelLimit, outcome)) {
        pthread_detach(thread->id);
        leftBehind = true;
        return false;
    }
    if (outcome == PTHREAD_CANCELED) {  // so it did not come to the end of run()
        markEnded(*thread);
        giveUpSide(thread);
    }
    return true;
}

void closeThread(Thread* thread) {
    if (!thread->joinedOrLeft) {
        if (waitForThread(thread, 0)) {
            pthread_join(thread->id, nullptr);
        } else {
            pthread_detach(thread->id);
        }
    }
    giveUpSide(thread);
}

bool threadsWereLeftBehind() {
    return leftBehind;
}

uint32_t currentThreadId() {
    return static_cast<uint32_t>(gettid());
}

uint32_t currentProcessId() {
    return static_cast<uint32_t>(getpid());
}

void sleepMilliseconds(uint32_t milliseconds) {
    sleepUntil(after(milliseconds));
}

}  // namespace platform
