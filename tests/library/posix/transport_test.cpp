#include "device/transport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include "support/system.h"

using namespace device;
using namespace std::chrono_literals;

namespace {

int descriptor(uint64_t end) {
    return static_cast<int>(end);
}

void waitForBytes(uint64_t end) {
    pollfd entry{descriptor(end), POLLIN, 0};
    poll(&entry, 1, -1);
}

}  // namespace

TEST(TransportOnPosix, isOverWhenThePrinterHasTakenTheBytesOrIsGone) {
    const uint8_t bytes[10] = {};
    const auto writeChunks = [](auto&&... arguments) { return directWriteInChunks(arguments...); };
    using Write = std::function<Result(PipeWriter&, const uint8_t*, uint32_t)>;
    for (const Write& write : {Write(workerWrite), Write(directWrite), Write(writeChunks)}) {
        for (const bool taken : {true, false}) {
            test::Pipe pipe;
            PipeWriter writer{pipe.writer};
            fcntl(descriptor(pipe.writer), F_SETFL, O_DIRECT);  // one write, one slot of the pipe
            fcntl(descriptor(pipe.writer), F_SETPIPE_SZ, 4096);
            auto written = std::async([&] { return write(writer, bytes, 10).code; });
            waitForBytes(pipe.reader);
            EXPECT_EQ(written.wait_for(50ms), std::future_status::timeout);
            taken ? void(pipe.receive()) : pipe.closeReader();
            EXPECT_EQ(written.get(), taken ? 0 : 2600);
        }
    }
}

// By a debugger, or by a shell. The answer comes meanwhile.
TEST(TransportOnPosix, isNotEndedByForceForTheTimeThatTheProcessIsStopped) {
    test::Pipe pipe;
    PipeReader reader{pipe.reader};
    const pid_t process = fork();
    if (process == 0) {
        uint8_t answer[answerCapacity];
        uint32_t count = 0;
        _exit(workerRead(reader, answer, count) && !readPipeAbandoned ? 0 : 1);
    }
    std::this_thread::sleep_for(100ms);
    kill(process, SIGSTOP);
    std::this_thread::sleep_for(transferLimitMilliseconds * 1ms);
    pipe.send({1});
    kill(process, SIGCONT);
    int status = -1;
    waitpid(process, &status, 0);
    EXPECT_EQ(status, 0);
}
