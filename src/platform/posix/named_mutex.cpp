#include "platform/named_mutex.h"

#include <pthread.h>

#include <algorithm>
#include <cstring>

#include "deadline.h"
#include "lock_file.h"
#include "platform/lock.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace platform {

namespace {

// Guards all mutexes and the list of them. Nothing is waited for while it is held, and no other lock taken; the
// system calls on a lock file take no longer than memory does.
struct CAPABILITY("registry lock") Registry {
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    NamedMutex* first GUARDED_BY(this) = nullptr;
    bool forksAreHandled GUARDED_BY(this) = false;
    bool threadEndsAreHandled GUARDED_BY(this) = false;
    pthread_key_t threadEndKey GUARDED_BY(this) = 0;

    void enter() ACQUIRE() { pthread_mutex_lock(&mutex); }
    void leave() RELEASE() { pthread_mutex_unlock(&mutex); }
};
constinit Registry registry;
using HoldingRegistry = Holding<Registry>;

}  // namespace

// The one object of this process for a name. All threads of the process share one open lock file, for which the
// kernel knows a single owner; which thread that is, is told apart here.
struct NamedMutex {
    LockFile file;
    pthread_cond_t changed{};
    const void* owner GUARDED_BY(registry) = nullptr;
    uint32_t depth GUARDED_BY(registry) = 0;
    uint32_t uses GUARDED_BY(registry) = 0;
    uint32_t waiting GUARDED_BY(registry) = 0;   // threads of this process
    bool promised GUARDED_BY(registry) = false;  // to one of those: it was released while they waited
    bool asking GUARDED_BY(registry) = false;    // a thread of this process is trying to get the file's lock
    Moment standBackUntil GUARDED_BY(registry) = 0;
    Moment stubbornUntil GUARDED_BY(registry) = 0;
    NamedMutex* next GUARDED_BY(registry) = nullptr;
};

namespace {

// Nanoseconds between two attempts to lock the file. The release wakes who waits; this is for owners that are
// killed, and for files that somebody has made unfit for that.
constexpr Moment firstPause = 100'000;
constexpr Moment longestPause = 4'000'000;

// How long this process leaves a mutex to another one that waited when it was released. When nobody takes it
// for that long, as the other is stopped or doesn't want it, nobody is waited for for the second time: so this
// costs no more than a tenth of the time.
constexpr Moment longestStandingBack = 20'000'000;
constexpr Moment stubbornness = 180'000'000;
constexpr Moment glance = 50'000;

// The address of this variable is the thread's identity: unlike a thread's number it is not given to another
// thread before the first one has abandoned what it owned. The model spares the library its only need of the
// dynamic loader.
[[gnu::tls_model("initial-exec")]] thread_local char self;

void disown(NamedMutex& mutex) REQUIRES(registry) {
    mutex.owner = nullptr;
    mutex.promised = mutex.waiting > 0;
    if (unlockFile(mutex.file)) mutex.standBackUntil = now() + longestStandingBack;
    pthread_cond_broadcast(&mutex.changed);
}

void endOwnership(NamedMutex& mutex) REQUIRES(registry) {
    if (mutex.owner == nullptr) return;
    noteProperEnd(mutex.file);
    disown(mutex);
}

void abandonOwned(void* thread) {
    const HoldingRegistry holding(registry);
    for (NamedMutex* mutex = registry.first; mutex != nullptr; mutex = mutex->next) {
        if (mutex->owner == thread) disown(*mutex);
    }
}

// A fork's child shares the open files and with them the parent's locks, which would outlive the parent. It
// starts with closed files, owns nothing, and has none of the threads that waited.
void resetInChild() RELEASE(registry) {
    for (NamedMutex* mutex = registry.first; mutex != nullptr; mutex = mutex->next) {
        closeLockFile(mutex->file);
        initCondition(mutex->changed);
        mutex->owner = nullptr;
        mutex->asking = false;
        mutex->promised = false;
        mutex->waiting = 0;
    }
    registry.leave();
}

// When the image is loaded, so that no fork comes in between. The handlers that others add later come before
// this one at a fork, as their locks do at a call.
// At that moment nothing needs the lock; later it is held.
[[gnu::constructor]] void handleForks() NO_THREAD_SAFETY_ANALYSIS {
    registry.forksAreHandled = pthread_atfork([]() ACQUIRE(registry) { registry.enter(); },
                                              []() RELEASE(registry) { registry.leave(); }, resetInChild) == 0;
}

// Nothing that failed is remembered, since there may be memory and keys by the next call.
bool isPrepared() REQUIRES(registry) {
    if (!registry.forksAreHandled) handleForks();
    if (!registry.threadEndsAreHandled)
        registry.threadEndsAreHandled = pthread_key_create(&registry.threadEndKey, abandonOwned) == 0;
    return registry.forksAreHandled && registry.threadEndsAreHandled &&
           pthread_setspecific(registry.threadEndKey, &self) == 0;
}

NamedMutex* findByFile(const char* name) REQUIRES(registry) {
    NamedMutex* mutex = registry.first;
    while (mutex != nullptr && std::strcmp(mutex->file.name, name) != 0) mutex = mutex->next;
    return mutex;
}

NamedMutex* addToRegistry(const LockFile& file) REQUIRES(registry) {
    auto* mutex = create<NamedMutex>(file);
    if (mutex == nullptr) return nullptr;
    initCondition(mutex->changed);
    mutex->next = registry.first;
    registry.first = mutex;
    return mutex;
}

void removeFromRegistry(NamedMutex& mutex) REQUIRES(registry) {
    NamedMutex** link = &registry.first;
    while (*link != &mutex) link = &(*link)->next;
    *link = mutex.next;
}

// Among the threads of the process. Who comes after a release doesn't overtake those who waited for it.
bool waitForTurn(NamedMutex& mutex, Moment limit) REQUIRES(registry) {
    bool hasWaited = false;
    bool inTime = true;
    while (mutex.owner != nullptr || mutex.asking || (mutex.promised && !hasWaited)) {
        if (!inTime) return false;
        ++mutex.waiting;
        inTime = waitOn(mutex.changed, registry.mutex, limit);
        --mutex.waiting;
        hasWaited = true;
    }
    mutex.promised = false;
    return true;
}

// Among the processes: without it, who has just released is always faster than who is woken by that.
// False when another one is still to be first at the limit.
bool standBack(NamedMutex& mutex, Moment limit) REQUIRES(registry) {
    if (now() >= mutex.standBackUntil || now() < mutex.stubbornUntil) return true;
    while (isDueToAnother(mutex.file)) {
        if (now() >= mutex.standBackUntil) {
            mutex.stubbornUntil = now() + stubbornness;
            return true;
        }
        if (now() >= limit) return false;
        const Moment next = std::min({now() + glance, mutex.standBackUntil, limit});
        registry.leave();
        sleepUntil(next);
        registry.enter();
    }
    return true;
}

// The kernel can't be asked to wait for the lock up to a moment. It is asked when an owner lets go, and now and
// then. Whoever wakes this process in vain doesn't make it ask more often than the first pause has it.
LockAttempt waitForFile(NamedMutex& mutex, Moment limit) REQUIRES(registry) {
    LockAttempt attempt;
    Moment lastTurn = 0;
    for (Moment pause = firstPause;; pause = std::min(2 * pause, longestPause)) {
        const Moment turn = now();
        announceWaiting(mutex.file);
        const uint32_t release = lastRelease(mutex.file);
        attempt = tryLockFile(mutex.file);
        if (attempt != LockAttempt::heldElsewhere || turn >= limit) break;
        registry.leave();
        if (turn < lastTurn + firstPause) {
            sleepUntil(std::min(turn + firstPause, limit));
        } else {
            sleepUntilRelease(mutex.file, release, std::min(turn + pause, limit));
        }
        registry.enter();
        lastTurn = turn;
    }
    withdrawWaiting(mutex.file);
    return attempt;
}

LockAttempt lockFileUntil(NamedMutex& mutex, Moment limit) REQUIRES(registry) {
    if (!standBack(mutex, limit)) return LockAttempt::heldElsewhere;
    const LockAttempt attempt = tryLockFile(mutex.file);
    return attempt == LockAttempt::heldElsewhere && now() < limit ? waitForFile(mutex, limit) : attempt;
}

MutexWait obtain(NamedMutex& mutex, Moment limit) REQUIRES(registry) {
    if (!waitForTurn(mutex, limit)) return MutexWait::timedOut;
    mutex.asking = true;
    const LockAttempt attempt = lockFileUntil(mutex, limit);
    mutex.asking = false;
    if (attempt == LockAttempt::locked || attempt == LockAttempt::lockedAfterAbandon) {
        mutex.owner = &self;
        mutex.depth = 1;
        return attempt == LockAttempt::locked ? MutexWait::obtained : MutexWait::abandoned;
    }
    pthread_cond_broadcast(&mutex.changed);
    return attempt == LockAttempt::heldElsewhere ? MutexWait::timedOut : MutexWait::failed;
}

}  // namespace

NamedMutex* openNamedMutex(const char* name) {
    LockFile file;
    nameLockFile(file, name);
    const HoldingRegistry holding(registry);
    NamedMutex* mutex = findByFile(file.name);
    if (mutex == nullptr) mutex = addToRegistry(file);
    if (mutex != nullptr) ++mutex->uses;
    return mutex;
}

NamedMutex* shareNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return nullptr;
    const HoldingRegistry holding(registry);
    ++mutex->uses;
    return mutex;
}

void closeNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return;
    const HoldingRegistry holding(registry);
    if (--mutex->uses > 0) return;
    endOwnership(*mutex);
    removeFromRegistry(*mutex);
    removeLockFile(mutex->file);
    pthread_cond_destroy(&mutex->changed);
    destroy(mutex);
}

void revokeNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return;
    const HoldingRegistry holding(registry);
    endOwnership(*mutex);
}

void releaseClosedMutexes() {}  // closing them has ended the ownership

MutexWait waitForNamedMutex(NamedMutex* mutex, uint32_t milliseconds) {
    if (mutex == nullptr) return MutexWait::failed;
    const Moment limit = after(milliseconds);
    const HoldingRegistry holding(registry);
    if (!isPrepared()) return MutexWait::failed;
    if (mutex->owner != &self) return obtain(*mutex, limit);
    ++mutex->depth;
    return MutexWait::obtained;
}

bool releaseNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return false;
    const HoldingRegistry holding(registry);
    if (mutex->owner != &self) return false;
    if (--mutex->depth == 0) endOwnership(*mutex);
    return true;
}

bool isOwnedByThisProcess(NamedMutex* mutex) {
    if (mutex == nullptr) return false;
    const HoldingRegistry holding(registry);
    return mutex->owner != nullptr;
}

bool threadOwnsNamedMutex() {
    const HoldingRegistry holding(registry);
    const NamedMutex* mutex = registry.first;
    while (mutex != nullptr && mutex->owner != &self) mutex = mutex->next;
    return mutex != nullptr;
}

}  // namespace platform
