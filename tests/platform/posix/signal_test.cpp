// Signals meet the layer: interrupted calls, non-blocking descriptors, broken pipes, the threads' masks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/pipe.h"
#include "platform/thread.h"
#include "support/system.h"

using namespace platform;

namespace {

std::atomic<int> interruptions{0};

void countInterruption(int) {
    ++interruptions;
}

// Without SA_RESTART, so that the system's calls do end.
void installInterruption() {
    struct sigaction action {};
    action.sa_handler = countInterruption;
    sigaction(SIGUSR1, &action, nullptr);
    interruptions = 0;
}

void interruptUntilHandled(pthread_t thread, int times, const std::atomic<bool>& ended) {
    while (interruptions < times && !ended) {
        pthread_kill(thread, SIGUSR1);
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
    uint32_t written = 0;
    const uint8_t byte = 0;
    EXPECT_FALSE(writePipe(pipe.writer, &byte, 1, written));
}

void setNonBlocking(PipeHandle pipe) {
    ASSERT_EQ(fcntl(static_cast<int>(pipe), F_SETFL, O_NONBLOCK), 0);
}

}  // namespace

class InterruptedPipes : public testing::TestWithParam<bool> {};

TEST_P(InterruptedPipes, goOnWhereTheyWere) {
    installInterruption();
    test::Pipe pipe;
    if (GetParam()) {
        setNonBlocking(pipe.reader);
        setNonBlocking(pipe.writer);
    }
    const std::vector<uint8_t> sent(500'000, 7);
    uint32_t written = 0;
    std::atomic<bool> writerEnded{false}, readerEnded{false};
    std::thread writer([&] {
        writePipe(pipe.writer, sent.data(), static_cast<uint32_t>(sent.size()), written);
        writerEnded = true;
    });
    interruptUntilHandled(writer.native_handle(), 20, writerEnded);  // it waits for room meanwhile
    EXPECT_FALSE(writerEnded);

    std::vector<uint8_t> received;
    std::thread reader([&] {
        uint8_t piece[4096];
        uint32_t count = 0;
        while (readPipe(pipe.reader, piece, sizeof piece, count) && count > 0) {
            received.insert(received.end(), piece, piece + count);
        }
        readerEnded = true;
    });
    writer.join();
    interruptions = 0;
    interruptUntilHandled(reader.native_handle(), 20, readerEnded);  // it waits for more meanwhile
    EXPECT_FALSE(readerEnded);
    pipe.closeWriter();
    reader.join();
    EXPECT_EQ(written, sent.size());
    EXPECT_EQ(received, sent);
}

INSTANTIATE_TEST_SUITE_P(Modes, InterruptedPipes, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "nonBlocking" : "blocking"; });

TEST(BrokenPipeGuards, leaveNeitherASignalNorABlockedOneBehind) {
    signal(SIGPIPE, SIG_DFL);
    writeToBrokenPipe();
    EXPECT_FALSE(isPending(SIGPIPE));
    EXPECT_FALSE(isBlocked(SIGPIPE));
    BrokenPipeGuard outer;
    writeToBrokenPipe();
    EXPECT_TRUE(isBlocked(SIGPIPE)) << "the outer guard still stands";
}

TEST(BrokenPipeGuards, keepASignalThatWasPendingBefore) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    raise(SIGPIPE);
    writeToBrokenPipe();
    EXPECT_TRUE(isPending(SIGPIPE));
    EXPECT_TRUE(isBlocked(SIGPIPE));
    const timespec atOnce{};
    sigtimedwait(&signals, nullptr, &atOnce);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

TEST(ThreadSignals, areBlockedInAThreadAndUnchangedInTheOneThatStartsIt) {
    sigset_t before, within;
    sigfillset(&within);
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
