#include "platform/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <set>
#include <vector>

#include "support/system.h"

using namespace platform;

namespace {

// One blocking call on a pipe, as a body that may be ended by force makes it.
struct Transfer {
    PipeHandle pipe;
    bool writes;
    std::vector<uint8_t> buffer;
    uint32_t count = 0;
    bool succeeded = false;
};

void transfer(void* argument) {
    auto& job = *static_cast<Transfer*>(argument);
    auto length = static_cast<uint32_t>(job.buffer.size());
    job.succeeded = job.writes ? writePipe(job.pipe, job.buffer.data(), length, job.count)
                               : readPipe(job.pipe, job.buffer.data(), length, job.count);
}

Transfer blockedRead(const test::Pipe& pipe) {
    return {pipe.reader, false, std::vector<uint8_t>(300, 0xA5)};
}

Transfer writeToFullPipe(const test::Pipe& pipe) {
    return {pipe.writer, true, std::vector<uint8_t>(1 << 20, 0x5A)};
}

void send(const test::Pipe& pipe, const char* text) {
    uint32_t written = 0;
    ASSERT_TRUE(writePipe(pipe.writer, reinterpret_cast<const uint8_t*>(text),
                          static_cast<uint32_t>(std::strlen(text)), written));
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
    Thread* thread = startThread(transfer, &read);
    ASSERT_NE(thread, nullptr);
    EXPECT_FALSE(waitForThread(thread, 0));
    EXPECT_GE(millisecondsOf([&] { EXPECT_FALSE(waitForThread(thread, 100)); }), 80);
    send(pipe, "answer");
    EXPECT_TRUE(waitForThread(thread, forever));
    EXPECT_TRUE(waitForThread(thread, 0));
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(std::memcmp(read.buffer.data(), "answer", read.count), 0);
    EXPECT_EQ(read.count, 6u);
    closeThread(thread);
}

TEST(Threads, endByForceInABlockedReadAndLeaveTheBytesToTheNextReader) {
    test::Pipe pipe;
    Transfer read = blockedRead(pipe);
    Thread* thread = startThread(transfer, &read);
    EXPECT_FALSE(waitForThread(thread, 50));
    ASSERT_TRUE(endThreadByForce(thread));
    EXPECT_TRUE(waitForThread(thread, 0));
    closeThread(thread);
    send(pipe, "late");
    EXPECT_FALSE(read.succeeded);
    EXPECT_EQ(read.buffer, std::vector<uint8_t>(300, 0xA5));
    Transfer next = blockedRead(pipe);
    transfer(&next);
    EXPECT_EQ(next.count, 4u);
}

TEST(Threads, endByForceInAWriteThatIsHalfDone) {
    test::Pipe pipe;
    Transfer write = writeToFullPipe(pipe);
    Thread* thread = startThread(transfer, &write);
    EXPECT_FALSE(waitForThread(thread, 50));
    ASSERT_TRUE(endThreadByForce(thread));
    closeThread(thread);
    EXPECT_FALSE(write.succeeded);
    EXPECT_EQ(write.count, 0u);
}

TEST(Threads, endByForceManyTimesInARowAtOnceAfterTheirStart) {
    test::Pipe pipe;
    for (int round = 0; round < 200; ++round) {
        auto read = std::make_unique<Transfer>(blockedRead(pipe));
        Thread* thread = startThread(transfer, read.get());
        ASSERT_TRUE(endThreadByForce(thread));
        closeThread(thread);
    }
    EXPECT_FALSE(threadsWereLeftBehind());
}

TEST(Threads, thatEndedByThemselvesBearAForcedEnd) {
    test::Pipe pipe;
    for (int round = 0; round < 100; ++round) {
        Transfer read = blockedRead(pipe);
        send(pipe, "x");
        Thread* thread = startThread(transfer, &read);
        if (round % 2 == 0) waitForThread(thread, forever);
        ASSERT_TRUE(endThreadByForce(thread));
        closeThread(thread);
        EXPECT_TRUE(read.succeeded || round % 2 == 1);
        if (!read.succeeded) transfer(&read);
        EXPECT_EQ(read.count, 1u);
    }
}

TEST(Threads, goOnWhenTheyAreClosedUnfinished) {
    test::Pipe in, out;
    struct Relay {
        PipeHandle from, to;
    } relay{in.reader, out.writer};
    closeThread(startThread(
        [](void* argument) {
            auto& ends = *static_cast<Relay*>(argument);
            uint8_t byte = 0;
            uint32_t count = 0;
            readPipe(ends.from, &byte, 1, count);
            writePipe(ends.to, &byte, 1, count);
        },
        &relay));
    send(in, "y");
    Transfer answer = blockedRead(out);
    transfer(&answer);
    EXPECT_EQ(answer.buffer[0], 'y');
}

TEST(Threads, haveIdentifiersOfTheirOwn) {
    std::set<uint32_t> identifiers{currentThreadId(), 0xFFFFFFFF};
    test::Pipe pipe;
    struct Report {
        PipeHandle pipe;
        uint32_t identifier;
    };
    std::vector<Report> reports(10, {pipe.reader, 0});
    std::vector<Thread*> threads;
    for (Report& report : reports) {
        threads.push_back(startThread(
            [](void* argument) {
                auto& mine = *static_cast<Report*>(argument);
                mine.identifier = currentThreadId();
                uint8_t byte = 0;
                uint32_t count = 0;
                readPipe(mine.pipe, &byte, 1, count);  // so that all of them live at the same time
            },
            &report));
    }
    send(pipe, "0123456789");
    for (Thread* thread : threads) {
        EXPECT_TRUE(waitForThread(thread, forever));
        closeThread(thread);
    }
    for (const Report& report : reports) identifiers.insert(report.identifier);
    EXPECT_EQ(identifiers.size(), 12u);
}

TEST(Sleeping, takesAtLeastTheTimeAskedFor) {
    EXPECT_GE(millisecondsOf([] { sleepMilliseconds(50); }), 40);
}
