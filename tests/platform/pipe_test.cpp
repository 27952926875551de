#include <gtest/gtest.h>

#include <numeric>
#include <thread>

#include "support/system.h"
#include "transfer.h"

using namespace platform;

TEST(Pipes, areWrittenWholeAndReadInSmallPiecesToTheirEnd) {
    test::Pipe pipe;
    Transfer write{pipe.writer, std::vector<uint8_t>(300'100)};
    std::iota(write.buffer.begin(), write.buffer.end(), uint8_t{0});
    std::vector<uint8_t> received;
    std::thread reader([&] { received = pipe.receiveAll(); });
    writeAll(&write);
    pipe.closeWriter();
    reader.join();
    EXPECT_TRUE(write.succeeded);
    EXPECT_EQ(write.count, write.buffer.size());
    EXPECT_EQ(received, write.buffer);
}

TEST(Pipes, withoutAReaderFailAndDoNothingElse) {
    test::Pipe pipe;
    pipe.closeReader();
    const BrokenPipeGuard guard;
    for (int attempt = 0; attempt < 3; ++attempt) {
        Transfer write{pipe.writer, {'p'}, 99, true};
        writeAll(&write);
        EXPECT_FALSE(write.succeeded);
        EXPECT_EQ(write.count, 0u);
    }
}

TEST(Pipes, whoseReaderLeavesInTheMiddleFailAndTellHowFarTheyGot) {
    test::Pipe pipe;
    Transfer write{pipe.writer, std::vector<uint8_t>(1 << 20)}, read{pipe.reader, {0}};
    std::thread writer([&] {
        const BrokenPipeGuard guard;
        writeAll(&write);
    });
    readOnce(&read);
    pipe.closeReader();
    writer.join();
    EXPECT_FALSE(write.succeeded);
    EXPECT_LT(write.count, write.buffer.size());
}

TEST(Pipes, thatAreNoneFailAtOnce) {
    const test::Pipe pipe;
    const PipeHandle beyondAllDescriptors = pipe.writer + (PipeHandle{1} << 32);
    for (const PipeHandle none : {noPipe, beyondAllDescriptors}) {
        for (const auto action : {readOnce, writeAll}) {
            Transfer transfer{none, {0}, 99, true};
            action(&transfer);
            EXPECT_FALSE(transfer.succeeded);
            EXPECT_EQ(transfer.count, 0u);
        }
    }
}
