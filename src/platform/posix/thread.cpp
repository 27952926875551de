#include "platform/thread.h"

#include <dlfcn.h>
#include <gnu/lib-names.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <new>

#include "deadline.h"

namespace platform {

// Stands at the top of its thread's stack. When the thread has ended, both are the next one's; a thread that is
// left behind, or closed while it runs, keeps them for ever.
struct alignas(64) Thread {
    char* memory;  // all of it; the lowest page is a guard
    char* stack;   // the lowest byte above the guard
    pthread_t id{};
    void (*body)(void* argument) = nullptr;
    void* argument = nullptr;
    bool ended = false;
};

namespace {

constexpr uint32_t cancelLimit = 1000;  // ms

std::atomic<bool> leftBehind{false};

// The unwinder, which ends a cancelled thread. The system would load it at the first cancellation, and end the
// process where it can't: when none is installed, after chroot, or without descriptors left.
std::atomic<void*> unwinder{nullptr};

bool loadUnwinder() {
    if (unwinder == nullptr) unwinder = dlopen(LIBGCC_S_SO, RTLD_NOW | RTLD_LOCAL);
    return unwinder != nullptr;
}

// A stack that is kept: the system would give its pages back after each transfer, to be filled anew for the
// next.
std::atomic<Thread*> spare{nullptr};

size_t defaultStackSize() {
    size_t size = 0;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_getstacksize(&attributes, &size);
    pthread_attr_destroy(&attributes);
    return size;
}

// The guard and the record come on top of the size, which may be the least that the system takes.
Thread* makeStack() {
    const auto pageSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t wanted = pageSize + defaultStackSize() + sizeof(Thread);
    const size_t size = (wanted + pageSize - 1) / pageSize * pageSize;
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    auto* bottom = static_cast<char*>(memory);
    mprotect(bottom, pageSize, PROT_NONE);
    return new (bottom + size - sizeof(Thread)) Thread{bottom, bottom + pageSize};
}

size_t sizeFrom(const char* start, const void* end) {
    return static_cast<size_t>(static_cast<const char*>(end) - start);
}

void removeStack(Thread* thread) {
    munmap(thread->memory, sizeFrom(thread->memory, thread + 1));
}

Thread* takeStack() {
    Thread* kept = spare.exchange(nullptr);
    if (kept != nullptr) return kept;
    loadUnwinder();  // from the first thread on, while the process still can
    return makeStack();
}

void keepStack(Thread* thread) {
    Thread* const former = spare.exchange(thread);
    if (former != nullptr) removeStack(former);
}

void* run(void* record) {
    const auto* thread = static_cast<const Thread*>(record);
    thread->body(thread->argument);
    return nullptr;
}

// The new thread has its mask from the start, so there is no moment in which it would take a signal.
bool createWithSignalsBlocked(Thread& thread) {
    sigset_t all;
    sigfillset(&all);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    const bool created =
        pthread_attr_setstack(&attributes, thread.stack, sizeFrom(thread.stack, &thread)) == 0 &&
        pthread_attr_setsigmask_np(&attributes, &all) == 0 &&
        pthread_create(&thread.id, &attributes, run, &thread) == 0;
    pthread_attr_destroy(&attributes);
    return created;
}

}  // namespace

Thread* startThread(void (*body)(void* argument), void* argument) {
    Thread* thread = takeStack();
    if (thread == nullptr) return nullptr;
    thread->body = body;
    thread->argument = argument;
    thread->ended = false;
    if (createWithSignalsBlocked(*thread)) return thread;
    keepStack(thread);
    return nullptr;
}

bool waitForThread(Thread* thread, uint32_t milliseconds) {
    if (thread->ended) return true;
    const timespec limit = toTimespec(after(milliseconds));
    thread->ended = pthread_clockjoin_np(thread->id, nullptr, CLOCK_MONOTONIC, &limit) == 0;
    return thread->ended;
}

bool endThreadByForce(Thread* thread) {
    const bool cancelled = !thread->ended && loadUnwinder() && pthread_cancel(thread->id) == 0;
    if (waitForThread(thread, cancelled ? cancelLimit : 0)) return true;
    leftBehind = true;
    return false;
}

void closeThread(Thread* thread) {
    if (waitForThread(thread, 0)) {
        keepStack(thread);
    } else {
        pthread_detach(thread->id);
    }
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
