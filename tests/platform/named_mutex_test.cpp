#include "platform/named_mutex.h"

#include <atomic>
#include <chrono>
#include <vector>

#include "mutex_fixture.h"

using namespace platform;

namespace {

long long millisecondsSince(std::chrono::steady_clock::time_point start) {
    const auto elapsed = std::chrono::steady_clock::now() - start;
    return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
}

}  // namespace

TEST_F(NamedMutexes, belongToTheThreadUntilItReleasedThemAsOftenAsItObtainedThem) {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(waitForNamedMutex(mutex, 500), MutexWait::obtained);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(elsewhere(0), MutexWait::timedOut);
        EXPECT_TRUE(releaseNamedMutex(mutex));
    }
    EXPECT_FALSE(releaseNamedMutex(mutex));
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, areTheSameForEverybodyWhoOpensTheName) {
    NamedMutex* again = openNamedMutex(name.c_str());
    NamedMutex* other = openNamedMutex((name + "!").c_str());
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
    std::thread([&] {
        EXPECT_EQ(waitForNamedMutex(again, 0), MutexWait::timedOut);
        EXPECT_EQ(waitForNamedMutex(other, 0), MutexWait::obtained);
        EXPECT_TRUE(releaseNamedMutex(other));
    }).join();
    EXPECT_TRUE(releaseNamedMutex(again));
    closeNamedMutex(again);
    closeNamedMutex(other);
    test::removeMutex(name + "!");
}

TEST_F(NamedMutexes, areNotReleasedByAThreadThatDoesNotOwnThem) {
    EXPECT_FALSE(releaseNamedMutex(mutex));
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
    std::thread([&] { EXPECT_FALSE(releaseNamedMutex(mutex)); }).join();
    EXPECT_EQ(elsewhere(0), MutexWait::timedOut);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, keepAWaiterFromThreadOrProcessForItsWholeTimeLimit) {
    auto child = holdingChild();
    ASSERT_EQ(child.readLine(), "obtained");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(waitForNamedMutex(mutex, 500), MutexWait::timedOut);
    EXPECT_GE(millisecondsSince(start), 480);
    EXPECT_LT(millisecondsSince(start), 2000);
    child.closeInput();
    EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
    EXPECT_TRUE(child.endedWell());
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(elsewhere(500), MutexWait::timedOut);
    EXPECT_GE(millisecondsSince(start), 480);
    EXPECT_TRUE(releaseNamedMutex(mutex));
}

TEST_F(NamedMutexes, areGivenToAWaiterAsSoonAsTheOwnerReleasesThem) {
    EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
    auto child = holdingChild();
    MutexWait inThread = MutexWait::failed;
    std::thread waiter([&] {
        inThread = waitForNamedMutex(mutex, 20'000);
        releaseNamedMutex(mutex);
    });
    EXPECT_TRUE(releaseNamedMutex(mutex));
    EXPECT_EQ(child.readLine(), "obtained");
    child.closeInput();
    waiter.join();
    EXPECT_EQ(inThread, MutexWait::obtained);
    EXPECT_TRUE(child.endedWell());
}

TEST_F(NamedMutexes, tellTheNextOwnerOnceThatAThreadEndedWithoutARelease) {
    for (int round = 0; round < 20; ++round) {
        std::thread([&] {
            EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
            EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained);
        }).join();
        EXPECT_EQ(elsewhere(500), MutexWait::abandoned);
        EXPECT_EQ(elsewhere(500), MutexWait::obtained);
    }
}

TEST_F(NamedMutexes, tellTheNextOwnerOnceThatAProcessWasKilled) {
    for (int round = 0; round < 5; ++round) {
        auto child = holdingChild();
        ASSERT_EQ(child.readLine(), "obtained");
        EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::timedOut);
        child.kill();
        EXPECT_EQ(waitForNamedMutex(mutex, 500), MutexWait::abandoned);
        EXPECT_TRUE(releaseNamedMutex(mutex));
    }
}

TEST_F(NamedMutexes, tellOtherProcessesOfAThreadThatEndedWithoutARelease) {
    std::thread([&] { waitForNamedMutex(mutex, 0); }).join();
    auto child = holdingChild();
    EXPECT_EQ(child.readLine(), "abandoned");
    child.closeInput();
    EXPECT_TRUE(child.endedWell());
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, stayOwnedWhenAUseOfThemIsClosed) {
    NamedMutex* shared = shareNamedMutex(mutex);
    NamedMutex* again = openNamedMutex(name.c_str());
    EXPECT_EQ(waitForNamedMutex(shared, 0), MutexWait::obtained);
    closeNamedMutex(again);
    EXPECT_EQ(elsewhere(0), MutexWait::timedOut);
    EXPECT_TRUE(releaseNamedMutex(shared));
    closeNamedMutex(shared);
    EXPECT_EQ(elsewhere(0), MutexWait::obtained);
}

TEST_F(NamedMutexes, letOneOfManyThreadsAndProcessesInAtATime) {
    std::vector<std::jthread> threads;
    std::atomic<int> inside{0}, total{0};
    for (int i = 0; i < 6; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                EXPECT_EQ(waitForNamedMutex(mutex, forever), MutexWait::obtained);
                EXPECT_EQ(++inside, 1);
                ++total;
                --inside;
                EXPECT_TRUE(releaseNamedMutex(mutex));
            }
        });
    }
    auto child = holdingChild();
    EXPECT_EQ(child.readLine(), "obtained");
    child.closeInput();
    EXPECT_TRUE(child.endedWell());
    threads.clear();
    EXPECT_EQ(total, 600);
}

TEST(NamedMutexNames, mayHaveAnyCharactersButABackslash) {
    const std::string path =
        "usb#vid_1234&pid_5678#{a5dcbf10-6530}/\xC3\xA4 \x01?*.." + std::to_string(currentThreadId());
    for (const std::string& name : {path, path + std::string(60, 'n')}) {
        NamedMutex* mutex = openNamedMutex(name.c_str());
        EXPECT_EQ(waitForNamedMutex(mutex, 0), MutexWait::obtained) << name;
        EXPECT_TRUE(releaseNamedMutex(mutex));
        closeNamedMutex(mutex);
        test::removeMutex(name);
    }
}

TEST(MissingMutexes, areNeitherObtainedNorReleased) {
    EXPECT_EQ(shareNamedMutex(nullptr), nullptr);
    EXPECT_EQ(waitForNamedMutex(nullptr, forever), MutexWait::failed);
    EXPECT_FALSE(releaseNamedMutex(nullptr));
    closeNamedMutex(nullptr);
}
