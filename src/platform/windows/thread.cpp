#include "platform/thread.h"

#include <process.h>

#include <atomic>

#include "platform/memory.h"
#include "system.h"

namespace platform {

namespace {

constexpr uint32_t cancelPause = 10;  // ms
constexpr int cancelAttempts = 50;
constexpr uint32_t terminateLimit = 500;  // ms

std::atomic<bool> leftBehind{false};

// What a new thread needs to know. It is the thread's alone, so that its end, however it comes, concerns
// nobody.
struct Start {
    void (*body)(void* argument);
    void* argument;
    HMODULE image;
};

// A Thread is the system's handle and nothing else.
HANDLE handleOf(Thread* thread) {
    return reinterpret_cast<HANDLE>(thread);
}

unsigned __stdcall run(void* record) {
    const Start start = *static_cast<Start*>(record);
    destroy(static_cast<Start*>(record));
    start.body(start.argument);
    FreeLibraryAndExitThread(start.image, 0);
}

// One call is not enough: the thread may not have entered its read or write yet.
bool cancelCall(Thread* thread) {
    for (int attempt = 0; attempt < cancelAttempts; ++attempt) {
        CancelSynchronousIo(handleOf(thread));
        if (waitForThread(thread, cancelPause)) return true;
    }
    return false;
}

// The thread's reference to the image is never given back, which keeps the image loaded from now on.
bool terminate(Thread* thread) {
    TerminateThread(handleOf(thread), 0);
    return waitForThread(thread, terminateLimit);
}

}  // namespace

Thread* startThread(void (*body)(void* argument), void* argument) {
    auto* start = create<Start>(body, argument, ownImage(0));
    if (start == nullptr) return nullptr;
    const uintptr_t handle = _beginthreadex(nullptr, 0, run, start, 0, nullptr);
    if (handle == 0) {
        FreeLibrary(start->image);
        destroy(start);
    }
    return reinterpret_cast<Thread*>(handle);
}

bool waitForThread(Thread* thread, uint32_t milliseconds) {
    static_assert(forever == INFINITE);
    return WaitForSingleObject(handleOf(thread), milliseconds) == WAIT_OBJECT_0;
}

bool endThreadByForce(Thread* thread) {
    if (cancelCall(thread) || terminate(thread)) return true;
    leftBehind = true;
    return false;
}

void closeThread(Thread* thread) {
    CloseHandle(handleOf(thread));
}

bool threadsWereLeftBehind() {
    return leftBehind;
}

uint32_t currentThreadId() {
    return GetCurrentThreadId();
}

uint32_t currentProcessId() {
    return GetCurrentProcessId();
}

void sleepMilliseconds(uint32_t milliseconds) {
    Sleep(milliseconds);
}

}  // namespace platform
