#include "api/entry_guard.h"

#include <atomic>

#include "api/object_lifecycle.h"
#include "api/object_table.h"
#include "device/api_lock.h"
#include "device/device_change_thread.h"
#include "device/device_table.h"
#include "platform/fork.h"
#include "platform/named_mutex.h"

namespace api {

namespace {

constinit std::atomic<bool> forksAreHandled{false};

/// All state of the process but the named mutexes, which see to themselves. The one thread of the child needs
/// no lock for it.
void resetInChild() NO_THREAD_SAFETY_ANALYSIS {
    platform::startAnew(device::apiLock);
    resetObjectTableInChild();
    resetLifecycleInChild();
    device::resetDeviceTableInChild();
    device::resetControlLibraryInChild();
    device::resetDeviceChangeThreadInChild();
}

}  // namespace

// The check of the locks doesn't know what a flag decides.
EntryGuard::EntryGuard(bool locked) NO_THREAD_SAFETY_ANALYSIS : locked_(locked) {
    if (!forksAreHandled) forksAreHandled = platform::runInForkedChildren(resetInChild);
    platform::releaseClosedMutexes();
    if (locked_) device::apiLock.enter();
}

EntryGuard::~EntryGuard() NO_THREAD_SAFETY_ANALYSIS {
    if (locked_) device::apiLock.leave();
}

}  // namespace api
