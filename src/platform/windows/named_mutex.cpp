#include "platform/named_mutex.h"

#include <atomic>

#include "platform/memory.h"
#include "platform/thread.h"
#include "system.h"

namespace platform {

struct NamedMutex {
    HANDLE handle;
    std::atomic<uint32_t> uses{1};
};

NamedMutex* openNamedMutex(const char* name) {
    const HANDLE handle = CreateMutexA(nullptr, FALSE, name);
    if (handle == nullptr) return nullptr;
    auto* mutex = create<NamedMutex>(handle);
    if (mutex == nullptr) CloseHandle(handle);
    return mutex;
}

NamedMutex* shareNamedMutex(NamedMutex* mutex) {
    if (mutex != nullptr) ++mutex->uses;
    return mutex;
}

void closeNamedMutex(NamedMutex* mutex) {
    if (mutex == nullptr || --mutex->uses > 0) return;
    CloseHandle(mutex->handle);
    destroy(mutex);
}

MutexWait waitForNamedMutex(NamedMutex* mutex, uint32_t milliseconds) {
    static_assert(forever == INFINITE);
    if (mutex == nullptr) return MutexWait::failed;
    switch (WaitForSingleObject(mutex->handle, milliseconds)) {
        case WAIT_OBJECT_0:
            return MutexWait::obtained;
        case WAIT_ABANDONED:
            return MutexWait::abandoned;
        case WAIT_TIMEOUT:
            return MutexWait::timedOut;
        default:
            return MutexWait::failed;
    }
}

bool releaseNamedMutex(NamedMutex* mutex) {
    return mutex != nullptr && ReleaseMutex(mutex->handle) != 0;
}

}  // namespace platform
