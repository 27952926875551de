#include "platform/thread.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/system.h"
#include "transfer.h"

using namespace platform;

namespace {

Transfer blockedRead(const test::Pipe& pipe) {
    return {pipe.reader, std::vector<uint8_t>(300, 0xA5)};
}

Transfer writeToFullPipe(const test::Pipe& pipe) {
    return {pipe.writer, std::vector<uint8_t>(1 << 20, 0x5A)};
}

long long millisecondsOf(auto action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
        .count();
}

}  // namespace

TEST(Threads, areWaitedForUntilTheLimitAndSeenWhenTheyEnd) {
    test::Pipe pipe;
    Transfer read = blockedRead(pipe);
    Thread* thread = startThread(readOnce, &read);
    ASSERT_NE(thread, nullptr);
    EXPECT_FALSE(waitForThread(thread, 0));
    EXPECT_GE(millisecondsOf([&] { EXPECT_FALSE(waitForThread(thread, 100)); }), 80);
    EXPECT_TRUE(pipe.send({'y', 'e', 's'}));
    EXPECT_TRUE(waitForThread(thread, forever));
    EXPECT_TRUE(waitForThread(thread, 0));
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.count, 3u);
    EXPECT_EQ(read.buffer[2], 's');
    closeThread(thread);
    EXPECT_GE(millisecondsOf([] { sleepMilliseconds(50); }), 40);
}

TEST(Threads, endByForceInABlockedReadOrAWriteThatIsHalfDone) {
    test::Pipe in, out;
    Transfer read = blockedRead(in), write = writeToFullPipe(out);
    Thread* reader = startThread(readOnce, &read);
    Thread* writer = startThread(writeAll, &write);
    for (Thread* thread : {reader, writer}) {
        EXPECT_FALSE(waitForThread(thread, 50));
        ASSERT_TRUE(endThreadByForce(thread));
        EXPECT_TRUE(waitForThread(thread, 0));
        closeThread(thread);
    }
    EXPECT_TRUE(in.send({'l', 'a', 't', 'e'}));
    EXPECT_FALSE(read.succeeded || write.succeeded);
    EXPECT_EQ(read.buffer, std::vector<uint8_t>(300, 0xA5));
    EXPECT_EQ(write.count, 0u);
    readOnce(&read);
    EXPECT_EQ(read.count, 4u) << "the bytes are the next reader's";
}

TEST(Threads, endByForceManyTimesInARowAtOnceAfterTheirStart) {
    test::Pipe pipe;
    for (int round = 0; round < 200; ++round) {
        Transfer read = blockedRead(pipe);
        Thread* thread = startThread(readOnce, &read);
        ASSERT_TRUE(endThreadByForce(thread));
        closeThread(thread);
    }
    EXPECT_FALSE(threadsWereLeftBehind());
}

TEST(Threads, thatEndedByThemselvesBearAForcedEnd) {
    test::Pipe pipe;
    for (int round = 0; round < 100; ++round) {
        Transfer read = blockedRead(pipe);
        EXPECT_TRUE(pipe.send({'x'}));
        Thread* thread = startThread(readOnce, &read);
        if (round % 2 == 0) waitForThread(thread, forever);
        ASSERT_TRUE(endThreadByForce(thread));
        closeThread(thread);
        EXPECT_TRUE(read.succeeded || round % 2 == 1);
        if (!read.succeeded) {  // the system may have let the byte go with the thread
            EXPECT_TRUE(pipe.send({'x'}));
            readOnce(&read);
        }
        EXPECT_GE(read.count, 1u);
    }
}

TEST(Threads, goOnWhenTheyAreClosedUnfinished) {
    test::Pipe pipe;
    static auto* const write = new Transfer(writeToFullPipe(pipe));  // the thread may be at it to the end
    closeThread(startThread(writeAll, write));
    Transfer read{pipe.reader, std::vector<uint8_t>(1000)};
    for (size_t received = 0; received < write->buffer.size(); received += read.count) {
        readOnce(&read);
        ASSERT_TRUE(read.succeeded);
    }
}
