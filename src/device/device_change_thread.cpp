#include "device/device_change_thread.h"

#include "platform/device_changes.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace device {

namespace {

constexpr uint32_t pollMilliseconds = 200;
constexpr uint32_t stopPauseMilliseconds = 10;
constexpr uint32_t stopLimitMilliseconds = 5000;

/// One per started thread, which frees it at its end: a thread that outlives the wait of its stop is not
/// called back to life by the start of the next one.
struct Generation {
    DeviceChangeHandler handler;
    std::atomic<bool> stop{false};
};

/// Both null while no thread runs.
constinit platform::Thread* thread GUARDED_BY(apiLock) = nullptr;
constinit Generation* generation GUARDED_BY(apiLock) = nullptr;

void threadBody(void* argument) {
    auto* own = static_cast<Generation*>(argument);
    platform::DeviceChanges* changes = platform::openDeviceChanges();
    while (!own->stop) {
        if (platform::takeDeviceChange(changes)) own->handler(own->stop);
        platform::sleepMilliseconds(pollMilliseconds);
    }
    platform::closeDeviceChanges(changes);
    platform::destroy(own);
}

}  // namespace

void startDeviceChangeThread(DeviceChangeHandler handler) {
    if (thread != nullptr) return;
    generation = platform::create<Generation>(handler);
    if (generation == nullptr) return;
    thread = platform::startThread(threadBody, generation);
    if (thread != nullptr) return;
    platform::destroy(generation);
    generation = nullptr;
}

void stopDeviceChangeThread() {
    if (thread == nullptr) return;
    generation->stop = true;
    generation = nullptr;
    platform::sleepMilliseconds(stopPauseMilliseconds);
    platform::waitForThread(thread, stopLimitMilliseconds);
    platform::closeThread(thread);
    thread = nullptr;
}

void resetDeviceChangeThreadInChild() {
    thread = nullptr;
    generation = nullptr;
    platform::closeDeviceChangesInChild();
}

}  // namespace device
