// Locks keep threads apart, and what is opened and closed a hundred times leaves nothing open.
#include <gtest/gtest.h>

#include <thread>

#include "platform/device_changes.h"
#include "platform/lock.h"
#include "platform/module.h"
#include "platform/named_mutex.h"
#include "platform/thread.h"
#include "support/system.h"
#include "transfer.h"

using namespace platform;

namespace {

void endThreads() {
    test::Pipe pipe;
    Transfer read{pipe.reader, {0}};
    EXPECT_TRUE(pipe.send({'x'}));
    for (bool byForce : {false, true}) {
        Thread* thread = startThread(readOnce, &read);
        EXPECT_TRUE(byForce ? endThreadByForce(thread) : waitForThread(thread, forever));
        closeThread(thread);
    }
}

void abandonMutex() {
    NamedMutex* mutex = openNamedMutex("test_leak");
    std::thread([&] {
        EXPECT_EQ(waitForNamedMutex(shareNamedMutex(mutex), 1000), MutexWait::obtained);
    }).join();
    EXPECT_EQ(waitForNamedMutex(mutex, 1000), MutexWait::abandoned);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    closeNamedMutex(mutex);
    closeNamedMutex(mutex);
}

void loadModule() {
    ModuleHandle module = loadBesideThisLibrary("zprusb_test_module");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(findFunction(module, "testModuleAnswer"), nullptr);
    EXPECT_EQ(findFunction(module, "testModuleQuestion"), nullptr);
    unloadModule(module);
}

void listen() {
    DeviceChanges* changes = openDeviceChanges();
    EXPECT_NE(changes, nullptr);
    closeDeviceChanges(changes);
}

}  // namespace

TEST(Resources, areGivenBackByEveryPartOfTheLayer) {
    for (const auto round : {endThreads, abandonMutex, loadModule, listen}) {
        round();  // what the system sets up at the first use stays
        const unsigned before = test::resourceCount();
        for (int i = 0; i < 100; ++i) round();
        EXPECT_LT(test::resourceCount(), before + 10);  // the system opens and closes some of its own
    }
}

TEST(Resources, thatAreNoneAreRefused) {
    EXPECT_EQ(shareNamedMutex(nullptr), nullptr);
    EXPECT_EQ(waitForNamedMutex(nullptr, forever), MutexWait::failed);
    EXPECT_FALSE(releaseNamedMutex(nullptr));
    closeNamedMutex(nullptr);
    EXPECT_FALSE(takeDeviceChange(nullptr));
    closeDeviceChanges(nullptr);
}

TEST(Locks, keepThreadsApart) {
    Lock lock;
    int counter = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                const Holding holding(lock);
                const int seen = counter;
                std::this_thread::yield();
                counter = seen + 1;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(counter, 2000);
}
