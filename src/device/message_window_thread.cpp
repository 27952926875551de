#include "device/message_window_thread.h"

#include "platform/memory.h"
#include "platform/message_window.h"
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
    std::atomic<bool> windowThreadStop{false};
};

/// Guarded by the ApiLock; both null while no thread runs.
constinit platform::Thread* thread = nullptr;
constinit Generation* generation = nullptr;

void threadBody(void* argument) {
    auto* own = static_cast<Generation*>(argument);
    platform::MessageWindow* window = platform::createMessageWindow();
    while (!own->windowThreadStop) {
        platform::WindowMessage message;
        if (platform::takeMessage(window, message) && message.number == platform::messageDeviceChange &&
            message.parameter == platform::deviceNodesChanged) {
            own->handler(own->windowThreadStop);
        }
        platform::sleepMilliseconds(pollMilliseconds);
    }
    platform::destroyMessageWindow(window);
    platform::destroy(own);
}

}  // namespace

void startMessageWindowThread(DeviceChangeHandler handler) {
    if (thread != nullptr) return;
    generation = platform::create<Generation>(handler);
    if (generation == nullptr) return;
    thread = platform::startThread(threadBody, generation);
    if (thread != nullptr) return;
    platform::destroy(generation);
    generation = nullptr;
}

void stopMessageWindowThread() {
    if (thread == nullptr) return;
    generation->windowThreadStop = true;
    generation = nullptr;
    platform::sleepMilliseconds(stopPauseMilliseconds);
    platform::waitForThread(thread, stopLimitMilliseconds);
    platform::closeThread(thread);
    thread = nullptr;
}

void resetMessageWindowThreadInChild() {
    thread = nullptr;
    generation = nullptr;
    platform::destroyWindowsInChild();
}

}  // namespace device
