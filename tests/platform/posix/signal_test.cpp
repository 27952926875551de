// Signals meet the layer: interrupted calls, non-blocking descriptors, broken pipes, the threads' masks; and
// threads that the system can hardly start or end.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/thread.h"
#include "support/system.h"
#include "transfer.h"

using namespace platform;

namespace {

std::atomic<int> interruptions{0};

// While it waits; a thread that ended is never interrupted, and the test runs out of time.
void interruptOften(std::thread& thread) {
    interruptions = 0;
    while (interruptions < 20) {
        pthread_kill(thread.native_handle(), SIGUSR1);
        std::this_thread::yield();
    }
}

bool isPending(int signal) {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

bool isBlocked(int signal) {
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

void writeToBrokenPipe() {
    test::Pipe pipe;
    pipe.closeReader();
    const BrokenPipeGuard guard;
    Transfer write{pipe.writer, {0}};
    writeAll(&write);
    EXPECT_FALSE(write.succeeded);
}

}  // namespace

TEST(Signals, interruptNeitherBlockingNorNonBlockingPipes) {
    struct sigaction action {};  // without SA_RESTART, so that the system's calls do end
    action.sa_handler = [](int) { ++interruptions; };
    sigaction(SIGUSR1, &action, nullptr);
    for (int mode : {0, O_NONBLOCK}) {
        test::Pipe pipe;
        for (const PipeHandle end : {pipe.reader, pipe.writer})
            ASSERT_EQ(fcntl(static_cast<int>(end), F_SETFL, mode), 0);
        Transfer write{pipe.writer, std::vector<uint8_t>(500'000, 7)};
        std::vector<uint8_t> received;
        std::thread writer([&] { writeAll(&write); });
        interruptOften(writer);
        std::thread reader([&] { received = pipe.receiveAll(); });
        writer.join();
        interruptOften(reader);
        pipe.closeWriter();
        reader.join();
        EXPECT_EQ(write.count, write.buffer.size());
        EXPECT_EQ(received, write.buffer);
    }
}

TEST(Signals, ofBrokenPipesAreLeftAsTheyWere) {
    signal(SIGPIPE, SIG_DFL);
    writeToBrokenPipe();
    EXPECT_FALSE(isPending(SIGPIPE));
    EXPECT_FALSE(isBlocked(SIGPIPE));
    const BrokenPipeGuard outer;
    writeToBrokenPipe();
    EXPECT_TRUE(isBlocked(SIGPIPE)) << "the outer guard still stands";
    raise(SIGPIPE);
    writeToBrokenPipe();
    EXPECT_TRUE(isPending(SIGPIPE));
}

TEST(Signals, areBlockedInAThreadAndUnchangedInTheOneThatStartsIt) {
    sigset_t before, within;
    sigemptyset(&within);
    pthread_sigmask(SIG_BLOCK, nullptr, &before);
    Thread* thread = startThread(
        [](void* mask) { pthread_sigmask(SIG_BLOCK, nullptr, static_cast<sigset_t*>(mask)); }, &within);
    EXPECT_TRUE(waitForThread(thread, forever));
    closeThread(thread);
    for (int signal : {SIGPIPE, SIGINT, SIGTERM, SIGUSR1, SIGALRM, SIGCHLD}) {
        EXPECT_EQ(sigismember(&within, signal), 1) << signal;
        EXPECT_EQ(isBlocked(signal), sigismember(&before, signal) == 1) << signal;
    }
}

// A limit for stacks as small as the system has it.
TEST(Threads, startWithTheSmallestStack) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer needs more of each stack";
#endif
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    for (const size_t size : {sysconf(_SC_THREAD_STACK_MIN), 20480L}) {
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
        ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
        test::Pipe pipe;
        Transfer ends{pipe.reader, {0}}, stays{pipe.reader, {0}};
        Transfer* const reads[] = {&stays, &ends};  // at once, so that one stack is new
        Thread* threads[2];
        std::ranges::transform(reads, threads, [](Transfer* read) { return startThread(readOnce, read); });
        for (Thread* thread : threads) {
            ASSERT_NE(thread, nullptr) << size;
            EXPECT_TRUE(endThreadByForce(thread));
            closeThread(thread);
        }
    }
}

// The unwinder, that is, which ends a thread: without it the system would end the process.
TEST(Threads, areLeftBehindWhereTheSystemCannotEndThem) {
    for (const auto& [since, outcome] : {std::pair{"before", "left behind"}, {"after", "ended"}}) {
        test::ChildProcess probe(test::ownProgram().replace_filename("zprusb_unwinder_probe"), {since});
        const std::string told = probe.readLine();
        if (told == "loaded") GTEST_SKIP() << "a sanitizer has it loaded";
        EXPECT_EQ(told, outcome) << since;
        EXPECT_TRUE(probe.endedWell());
    }
}

// A hung driver keeps a thread so; here it is one that can't be cancelled.
TEST(StubbornThreads, areLeftBehindAfterAboutASecondAndMayStillEndLater) {
    static std::atomic<bool> mayEnd{false}, ended{false};
    Thread* thread = startThread(
        [](void*) {
            while (!mayEnd) sched_yield();
            ended = true;
        },
        nullptr);
    EXPECT_FALSE(threadsWereLeftBehind());
    EXPECT_FALSE(endThreadByForce(thread));
    EXPECT_TRUE(threadsWereLeftBehind());
    closeThread(thread);
    mayEnd = true;
    while (!ended) std::this_thread::yield();
}
