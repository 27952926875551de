// A thread that sits where nothing wakes it, as a hung driver keeps it. Here it is one that can't be cancelled.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/thread.h"

using namespace platform;

namespace {

struct Stubborn {
    std::atomic<bool> mayEnd{false};
    std::atomic<bool> ended{false};
};

void spin(void* argument) {
    auto& stubborn = *static_cast<Stubborn*>(argument);
    while (!stubborn.mayEnd) sched_yield();
    stubborn.ended = true;
}

}  // namespace

TEST(StubbornThreads, areLeftBehindAfterAboutASecondAndMayStillEndLater) {
    Stubborn stubborn;
    Thread* thread = startThread(spin, &stubborn);
    EXPECT_FALSE(threadsWereLeftBehind());
    EXPECT_FALSE(endThreadByForce(thread));
    EXPECT_TRUE(threadsWereLeftBehind());
    closeThread(thread);
    stubborn.mayEnd = true;
    while (!stubborn.ended) std::this_thread::yield();
}
