#include "platform/named_mutex.h"

#include <atomic>
#include <cstring>

#include "platform/lock.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "system.h"

namespace platform {

namespace {

constinit Lock registryLock;

}  // namespace

// The one object of this process for a name. The system's mutex is the truth; what is noted here of its owner
// only tells whether that is a thread of this process, and what such a thread has to give up yet.
struct NamedMutex {
    char name[MAX_PATH + 1];  // the system takes none that is longer
    // Null when the process has closed it. Read without the lock by those who have a use of it.
    HANDLE handle = nullptr;
    HANDLE owner GUARDED_BY(registryLock) =
        nullptr;  // the last one; while this is open, its number is given to no other thread
    DWORD ownerId GUARDED_BY(registryLock) = 0;
    uint32_t depth GUARDED_BY(registryLock) = 0;
    uint32_t uses GUARDED_BY(registryLock) = 0;
    bool isLost GUARDED_BY(registryLock) = false;  // one of orphans
    NamedMutex* next GUARDED_BY(registryLock) = nullptr;
};

namespace {

NamedMutex* registry GUARDED_BY(registryLock) = nullptr;

// Mutexes that the process closed or revoked while another thread owned them. The closed ones have no handle,
// so that they end when no other process has them open.
std::atomic<uint32_t> orphans{0};

bool isOwned(const NamedMutex& mutex) REQUIRES(registryLock) {
    return mutex.depth > 0 && WaitForSingleObject(mutex.owner, 0) == WAIT_TIMEOUT;
}

NamedMutex* findByName(const char* name) REQUIRES(registryLock) {
    NamedMutex* mutex = registry;
    while (mutex != nullptr && std::strcmp(mutex->name, name) != 0) mutex = mutex->next;
    return mutex;
}

NamedMutex* addToRegistry(const char* name) REQUIRES(registryLock) {
    const size_t size = std::strlen(name) + 1;
    if (size > sizeof NamedMutex::name) return nullptr;
    auto* mutex = create<NamedMutex>();
    if (mutex == nullptr) return nullptr;
    std::memcpy(mutex->name, name, size);
    mutex->next = registry;
    registry = mutex;
    return mutex;
}

void removeFromRegistry(NamedMutex& mutex) REQUIRES(registryLock) {
    NamedMutex** link = &registry;
    while (*link != &mutex) link = &(*link)->next;
    *link = mutex.next;
    if (mutex.owner != nullptr) CloseHandle(mutex.owner);
    destroy(&mutex);
}

void forgetOwner(NamedMutex& mutex) REQUIRES(registryLock) {
    mutex.depth = 0;
    if (!mutex.isLost) return;
    mutex.isLost = false;
    --orphans;
}

bool open(NamedMutex& mutex) REQUIRES(registryLock) {
    mutex.handle = CreateMutexA(nullptr, FALSE, mutex.name);
    // A new one, or one whose owner has ended since, is not owned by this process any more.
    const bool isNew = mutex.handle != nullptr && GetLastError() != ERROR_ALREADY_EXISTS;
    if (isNew || !isOwned(mutex)) forgetOwner(mutex);
    return mutex.handle != nullptr;
}

void close(NamedMutex& mutex) {
    CloseHandle(mutex.handle);
    mutex.handle = nullptr;
}

void releaseWholly(NamedMutex& mutex, HANDLE handle) REQUIRES(registryLock) {
    for (; mutex.depth > 0 && ReleaseMutex(handle); --mutex.depth) {
    }
    forgetOwner(mutex);
}

/// The system lets nobody but the owner release it.
void endOwnership(NamedMutex& mutex) REQUIRES(registryLock) {
    if (mutex.ownerId == GetCurrentThreadId()) releaseWholly(mutex, mutex.handle);
    if (!isOwned(mutex)) return forgetOwner(mutex);
    if (!mutex.isLost) ++orphans;
    mutex.isLost = true;
}

void releaseOrphan(NamedMutex& mutex) REQUIRES(registryLock) {
    if (mutex.handle != nullptr) return releaseWholly(mutex, mutex.handle);
    const HANDLE handle = OpenMutexA(MUTEX_MODIFY_STATE, FALSE, mutex.name);
    releaseWholly(mutex, handle);
    if (handle != nullptr) CloseHandle(handle);
}

void noteObtained(NamedMutex& mutex) REQUIRES(registryLock) {
    const DWORD caller = GetCurrentThreadId();
    if (mutex.ownerId == caller) {
        ++mutex.depth;
        return;
    }
    forgetOwner(mutex);
    if (mutex.owner != nullptr) CloseHandle(mutex.owner);
    mutex.owner = OpenThread(SYNCHRONIZE, FALSE, caller);
    mutex.ownerId = caller;
    mutex.depth = 1;
}

}  // namespace

NamedMutex* openNamedMutex(const char* name) {
    const Holding holding(registryLock);
    NamedMutex* mutex = findByName(name);
    if (mutex == nullptr) mutex = addToRegistry(name);
    if (mutex == nullptr) return nullptr;
    if (mutex->handle != nullptr || open(*mutex)) {
        ++mutex->uses;
        return mutex;
    }
    if (!mutex->isLost) removeFromRegistry(*mutex);
    return nullptr;
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
    endOwnership(*mutex);
    close(*mutex);
    if (!mutex->isLost) removeFromRegistry(*mutex);
}

void revokeNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return;
    const Holding holding(registryLock);
    endOwnership(*mutex);
}

void releaseClosedMutexes() {
    if (orphans.load(std::memory_order_relaxed) == 0) return;
    const Holding holding(registryLock);
    for (NamedMutex *mutex = registry, *next; mutex != nullptr; mutex = next) {
        next = mutex->next;
        if (!mutex->isLost) continue;
        if (mutex->ownerId == GetCurrentThreadId()) releaseOrphan(*mutex);
        if (!isOwned(*mutex)) forgetOwner(*mutex);
        if (mutex->uses == 0 && !mutex->isLost) removeFromRegistry(*mutex);
    }
}

MutexWait waitForNamedMutex(NamedMutex* mutex, uint32_t milliseconds) {
    static_assert(forever == INFINITE);
    if (mutex == nullptr) return MutexWait::failed;
    const DWORD outcome = WaitForSingleObject(mutex->handle, milliseconds);
    if (outcome == WAIT_TIMEOUT) return MutexWait::timedOut;
    if (outcome != WAIT_OBJECT_0 && outcome != WAIT_ABANDONED) return MutexWait::failed;
    const Holding holding(registryLock);
    noteObtained(*mutex);
    return outcome == WAIT_OBJECT_0 ? MutexWait::obtained : MutexWait::abandoned;
}

bool releaseNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr) return false;
    const Holding holding(registryLock);
    if (!ReleaseMutex(mutex->handle)) return false;
    if (--mutex->depth == 0) forgetOwner(*mutex);
    return true;
}

bool isOwnedByThisProcess(NamedMutex* mutex) {
    if (mutex == nullptr) return false;
    const Holding holding(registryLock);
    return isOwned(*mutex);
}

bool threadOwnsNamedMutex() {
    const DWORD caller = GetCurrentThreadId();
    const Holding holding(registryLock);
    const NamedMutex* mutex = registry;
    while (mutex != nullptr && (mutex->depth == 0 || mutex->ownerId != caller)) mutex = mutex->next;
    return mutex != nullptr;
}

}  // namespace platform
