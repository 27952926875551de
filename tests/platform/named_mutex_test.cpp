#include "platform/named_mutex.h"

#include <atomic>
#include <chrono>
#include <iostream>
#include <optional>
#include <vector>

#include "mutex_fixture.h"
#include "support/latch.h"
#include "support/role.h"

using namespace platform;

namespace {

/// Tells when it has to wait and how it got the mutex, and releases it when its input ends.
const test::Role holder("hold-mutex", [](const std::string& name) {
    constexpr const char* outcomes[] = {"obtained", "abandoned", "waits", "failed"};
    NamedMutex* mutex = openNamedMutex(name.c_str());
    MutexWait wait = waitForNamedMutex(mutex, 0);
    if (wait == MutexWait::timedOut) {
        std::cout << outcomes[static_cast<int>(wait)] << std::endl;
        wait = waitForNamedMutex(mutex, 10'000);
    }
    std::cout << outcomes[static_cast<int>(wait)] << std::endl;
    std::cin.get();
    const bool released = releaseNamedMutex(mutex);
    closeNamedMutex(mutex);
    return released ? 0 : 1;
});

/// Has the mutex nearly all the time until its input ends, and asks without waiting first.
const test::Role greedyHolder("hold-mutex-again", [](const std::string& name) {
    NamedMutex* mutex = openNamedMutex(name.c_str());
    std::atomic<bool> ended{false};
    std::jthread user([&] {
        while (!ended) {
            if (waitForNamedMutex(mutex, 0) == MutexWait::timedOut) waitForNamedMutex(mutex, forever);
            sleepMilliseconds(20);
            releaseNamedMutex(mutex);
        }
    });
    std::cin.get();
    ended = true;
    return 0;
});

}  // namespace

TEST_F(NamedMutexes, belongToTheThreadUntilItReleasedThemAsOftenAsItObtainedThem) {
    EXPECT_FALSE(releaseNamedMutex(mutex));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(waitForNamedMutex(mutex, 500), MutexWait::obtained);
    std::thread([&] { EXPECT_FALSE(releaseNamedMutex(mutex)); }).join();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(elsewhere(0), MutexWait::timedOut);
        EXPECT_TRUE(releaseNamedMutex(mutex));
    }
    EXPECT_FALSE(releaseNamedMutex(mutex));
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, areTheSameForEverybodyWhoUsesTheNameAndStayOwnedWhenAUseIsClosed) {
    NamedMutex* again = openNamedMutex(name.c_str());
    NamedMutex* shared = shareNamedMutex(mutex);
    // With characters as in a device path, which no file name can have, and longer than one.
    const std::string otherName =
        name + "usb#vid_1234&pid_5678#{a5dcbf10}/\xC3\xA4 \x01?*.." + std::string(100, 'n');
    NamedMutex* other = openNamedMutex(otherName.c_str());
    EXPECT_EQ(waitForNamedMutex(again, 0), MutexWait::obtained);
    closeNamedMutex(again);
    std::thread([&] {
        EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::timedOut);
        EXPECT_EQ(waitForNamedMutex(other, 0), MutexWait::obtained);
        EXPECT_TRUE(releaseNamedMutex(other));
    }).join();
    EXPECT_TRUE(releaseNamedMutex(shared));
    closeNamedMutex(shared);
    closeNamedMutex(other);
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, keepAWaiterFromThreadOrProcessForItsWholeTimeLimit) {
    const auto millisecondsOfATimeout = [&] {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(elsewhere(500), MutexWait::timedOut);
        return (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(1);
    };
    auto child = holdingChild();
    ASSERT_EQ(child.readLine(), "obtained");
    EXPECT_GE(millisecondsOfATimeout(), 480);
    child.closeInput();
    EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
    EXPECT_TRUE(child.endedWell());
    EXPECT_GE(millisecondsOfATimeout(), 480);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, tellTheNextOwnerOnceThatAThreadEndedWithoutARelease) {
    const auto abandon = [&] {
        std::thread([&] {
            for (int i = 0; i < 2; ++i) EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
        }).join();
    };
    for (int round = 0; round < 20; ++round) {
        abandon();
        EXPECT_FALSE(isOwnedByThisProcess(mutex));
        EXPECT_EQ(elsewhere(500), MutexWait::abandoned);
        EXPECT_EQ(elsewhere(500), MutexWait::obtained);
    }
    abandon();
    auto child = holdingChild();
    EXPECT_EQ(child.readLine(), "abandoned");
    child.closeInput();
    EXPECT_TRUE(child.endedWell());
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, areHandedToAProcessThatWaitsForOneThatHardlyEverLetsGo) {
    test::ChildProcess child(test::ownProgram(), {"hold-mutex-again", name});
    while (waitForNamedMutex(mutex, 0) != MutexWait::timedOut) releaseNamedMutex(mutex);
    for (int round = 0; round < 16; ++round) {
        EXPECT_EQ(waitForNamedMutex(mutex, 500), MutexWait::obtained);
        sleepMilliseconds(1);  // for the other one to wait as well
        releaseNamedMutex(mutex);
    }
    child.closeInput();
    EXPECT_TRUE(child.endedWell());
}

TEST_F(NamedMutexes, endTheirOwnershipWhenTheProcessClosesThemWhoeverElseWaits) {
    for (const bool anotherProcessWaits : {false, true}) {
        Latch owned(1), closed(1), lookedAgain(1), end(1);
        std::jthread owner([&] {
            for (int i = 0; i < 2; ++i) EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
            owned.countDown();
            closed.wait();
            releaseClosedMutexes();
            lookedAgain.countDown();
            end.wait();
            EXPECT_FALSE(releaseNamedMutex(mutex));
        });
        owned.wait();
        EXPECT_TRUE(isOwnedByThisProcess(mutex));
        std::optional<test::ChildProcess> child;
        if (anotherProcessWaits) {
            child.emplace(test::ownProgram(), std::vector<std::string>{"hold-mutex", name});
            EXPECT_EQ(child->readLine(), "waits");
        }
        closeNamedMutex(mutex);
        mutex = openNamedMutex(name.c_str());
        if (!anotherProcessWaits) {
            EXPECT_EQ(elsewhere(0), MutexWait::obtained);
        }
        closed.countDown();
        lookedAgain.wait();
        EXPECT_FALSE(isOwnedByThisProcess(mutex));
        if (anotherProcessWaits) {
            EXPECT_EQ(child->readLine(), "obtained");
            child->closeInput();
            EXPECT_TRUE(child->endedWell());
        }
        end.countDown();
    }
}
