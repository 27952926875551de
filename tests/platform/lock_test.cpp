#include "platform/lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using platform::Holding;

namespace {

template <class AnyLock>
int countWithThreads() {
    AnyLock lock;
    int counter = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                const Holding holding(lock);
                counter = counter + 1;
            }
        });
    }
    threads.clear();
    return counter;
}

}  // namespace

TEST(Locks, keepThreadsApart) {
    EXPECT_EQ(countWithThreads<platform::Lock>(), 20'000);
    EXPECT_EQ(countWithThreads<platform::RecursiveLock>(), 20'000);
}

TEST(RecursiveLocks, areFreeOnlyAfterAsManyLeavesAsEntries) {
    platform::RecursiveLock lock;
    std::atomic<bool> entered{false};
    for (int i = 0; i < 3; ++i) lock.enter();
    std::thread other([&] {
        const Holding holding(lock);
        entered = true;
    });
    for (int i = 0; i < 3; ++i) {
        std::this_thread::yield();
        EXPECT_FALSE(entered);
        lock.leave();
    }
    other.join();
    EXPECT_TRUE(entered);
}
