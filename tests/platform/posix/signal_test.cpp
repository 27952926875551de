// Signals meet the layer: interrupted calls, non-blocking descriptors, broken pipes, the threads' masks, and a
// thread that nothing ends.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

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
        std::thread reader([&] { received = readToTheEnd(pipe.reader); });
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
