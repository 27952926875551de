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

// The one object of this process for a name. All threads of the process share one open lock file, for which the
// kernel knows a single owner; which thread that is, is told apart here.
struct NamedMutex {
    LockFile file;  // guarded by mutex, but for its path
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t changed{};
    const void* owner = nullptr;  // guarded by mutex, as is all that follows
    uint32_t depth = 0;
    bool asking = false;  // a thread of this process is trying to get the file's lock
    NamedMutex* nextOwned = nullptr;
    NamedMutex* nextNamed = nullptr;  // guarded by registryLock
    uint32_t uses = 0;                // guarded by registryLock; an owning thread is one of them
};

namespace {

constexpr Moment firstPause = 100'000;  // nanoseconds between two attempts to lock the file
constexpr Moment longestPause = 4'000'000;

// Guards the list of mutexes. May be entered while a mutex is locked, not the other way round. Also held while
// a lock file is opened, which takes no longer than memory does.
Lock registryLock;
NamedMutex* registry = nullptr;

// The mutexes that the thread owns. The address of this variable is the thread's identity: unlike a thread's
// number it is not given to another thread before the first one has abandoned what it owned. The model spares
// the library its only need of the dynamic loader.
[[gnu::tls_model("initial-exec")]] thread_local NamedMutex* ownedMutexes = nullptr;

pthread_once_t preparation = PTHREAD_ONCE_INIT;
pthread_key_t threadEndKey;
bool prepared = false;

void disown(NamedMutex& mutex) {
    NamedMutex** link = &ownedMutexes;
    while (*link != &mutex) link = &(*link)->nextOwned;
    *link = mutex.nextOwned;
    mutex.owner = nullptr;
    unlockFile(mutex.file);
    pthread_cond_broadcast(&mutex.changed);
}

void abandonOwned(void*) {
    while (NamedMutex* mutex = ownedMutexes) {
        pthread_mutex_lock(&mutex->mutex);
        disown(*mutex);
        pthread_mutex_unlock(&mutex->mutex);
        closeNamedMutex(mutex);
    }
}

// A fork's child shares the open files and with them the parent's locks, which would outlive the parent. It
// starts with closed files and owns nothing; threads that it doesn't have may have been anywhere.
void resetInChild() {
    for (NamedMutex* mutex = registry; mutex != nullptr; mutex = mutex->nextNamed) {
        closeLockFile(mutex->file);
        mutex->mutex = PTHREAD_MUTEX_INITIALIZER;
        initCondition(mutex->changed);
        mutex->asking = false;
        if (mutex->owner != nullptr) --mutex->uses;
        mutex->owner = nullptr;
    }
    ownedMutexes = nullptr;
    registryLock.leave();
}

void prepare() {
    prepared = pthread_key_create(&threadEndKey, abandonOwned) == 0 &&
               pthread_atfork([] { registryLock.enter(); }, [] { registryLock.leave(); }, resetInChild) == 0;
}

NamedMutex* findByPath(const char* path) {
    NamedMutex* mutex = registry;
    while (mutex != nullptr && std::strcmp(mutex->file.path, path) != 0) mutex = mutex->nextNamed;
    return mutex;
}

NamedMutex* addToRegistry(const LockFile& file) {
    auto* mutex = create<NamedMutex>(file);
    if (mutex == nullptr) return nullptr;
    if (!openLockFile(mutex->file)) {
        destroy(mutex);
        return nullptr;
    }
    initCondition(mutex->changed);
    mutex->nextNamed = registry;
    registry = mutex;
    return mutex;
}

void removeFromRegistry(NamedMutex& mutex) {
    NamedMutex** link = &registry;
    while (*link != &mutex) link = &(*link)->nextNamed;
    *link = mutex.nextNamed;
}

void own(NamedMutex& mutex) {
    mutex.owner = &ownedMutexes;
    mutex.depth = 1;
    mutex.nextOwned = ownedMutexes;
    ownedMutexes = &mutex;
    shareNamedMutex(&mutex);
}

// The kernel can't be asked to wait up to a moment, so it is asked again and again, soon at first.
LockAttempt lockFileUntil(NamedMutex& mutex, Moment limit) {
    for (Moment pause = firstPause;; pause = std::min(2 * pause, longestPause)) {
        const LockAttempt attempt = tryLockFile(mutex.file);
        if (attempt != LockAttempt::heldElsewhere || now() >= limit) return attempt;
        pthread_mutex_unlock(&mutex.mutex);
        sleepUntil(std::min(now() + pause, limit));
        pthread_mutex_lock(&mutex.mutex);
    }
}

MutexWait obtain(NamedMutex& mutex, Moment limit) {
    while (mutex.owner != nullptr || mutex.asking) {
        if (!waitOn(mutex.changed, mutex.mutex, limit)) return MutexWait::timedOut;
    }
    mutex.asking = true;
    const LockAttempt attempt = lockFileUntil(mutex, limit);
    mutex.asking = false;
    if (attempt == LockAttempt::locked || attempt == LockAttempt::lockedAfterAbandon) {
        own(mutex);
        return attempt == LockAttempt::locked ? MutexWait::obtained : MutexWait::abandoned;
    }
    pthread_cond_broadcast(&mutex.changed);
    return attempt == LockAttempt::heldElsewhere ? MutexWait::timedOut : MutexWait::failed;
}

}  // namespace

NamedMutex* openNamedMutex(const char* name) {
    pthread_once(&preparation, prepare);
    if (!prepared) return nullptr;
    LockFile file;
    nameLockFile(file, name);
    const Holding holding(registryLock);
    NamedMutex* mutex = findByPath(file.path);
    if (mutex == nullptr) mutex = addToRegistry(file);
    if (mutex != nullptr) ++mutex->uses;
    return mutex;
}

NamedMutex* shareNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return nullptr;
    const Holding holding(registryLock);
    ++mutex->uses;
    return mutex;
}

void closeNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return;
    const Holding holding(registryLock);
    if (--mutex->uses > 0) return;
    removeFromRegistry(*mutex);
    closeLockFile(mutex->file);
    pthread_cond_destroy(&mutex->changed);
    destroy(mutex);
}

MutexWait waitForNamedMutex(NamedMutex* mutex, uint32_t milliseconds) {
    if (mutex == nullptr || pthread_setspecific(threadEndKey, &ownedMutexes) != 0) return MutexWait::failed;
    const Moment limit = after(milliseconds);
    MutexWait result = MutexWait::obtained;
    pthread_mutex_lock(&mutex->mutex);
    if (mutex->owner == &ownedMutexes) {
        ++mutex->depth;
    } else {
        result = obtain(*mutex, limit);
    }
    pthread_mutex_unlock(&mutex->mutex);
    return result;
}

bool releaseNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return false;
    pthread_mutex_lock(&mutex->mutex);
    const bool owned = mutex->owner == &ownedMutexes;
    const bool last = owned && --mutex->depth == 0;
    if (last) {
        noteProperEnd(mutex->file);
        disown(*mutex);
    }
    pthread_mutex_unlock(&mutex->mutex);
    if (last) closeNamedMutex(mutex);
    return owned;
}

}  // namespace platform
