#include "platform/pipe.h"

#include <gtest/gtest.h>

#include <numeric>
#include <thread>
#include <vector>

#include "support/system.h"

using namespace platform;

TEST(Pipes, areWrittenWholeThoughTheReaderTakesSmallPieces) {
    test::Pipe pipe;
    std::vector<uint8_t> sent(300'000);
    std::iota(sent.begin(), sent.end(), uint8_t{0});
    std::vector<uint8_t> received;
    std::thread reader([&] {
        uint8_t piece[1000];
        uint32_t count = 0;
        while (received.size() < sent.size() && readPipe(pipe.reader, piece, sizeof piece, count)) {
            received.insert(received.end(), piece, piece + count);
        }
    });
    uint32_t written = 0;
    EXPECT_TRUE(writePipe(pipe.writer, sent.data(), static_cast<uint32_t>(sent.size()), written));
    reader.join();
    EXPECT_EQ(written, sent.size());
    EXPECT_EQ(received, sent);
}

TEST(Pipes, giveAReaderWhatIsThereAndThenTheEnd) {
    test::Pipe pipe;
    uint8_t bytes[300] = {1, 2, 3};
    uint32_t count = 0;
    EXPECT_TRUE(writePipe(pipe.writer, bytes, 3, count));
    EXPECT_TRUE(readPipe(pipe.reader, bytes, sizeof bytes, count));
    EXPECT_EQ(count, 3u);
    pipe.closeWriter();
    readPipe(pipe.reader, bytes, sizeof bytes, count);
    EXPECT_EQ(count, 0u);
}

TEST(Pipes, withoutAReaderFailAndDoNothingElse) {
    test::Pipe pipe;
    pipe.closeReader();
    const BrokenPipeGuard guard;
    for (int attempt = 0; attempt < 3; ++attempt) {
        uint32_t written = 99;
        EXPECT_FALSE(writePipe(pipe.writer, reinterpret_cast<const uint8_t*>("page"), 4, written));
        EXPECT_EQ(written, 0u);
    }
}

TEST(Pipes, thatAreNoneFailAtOnce) {
    test::Pipe pipe;
    const PipeHandle beyondAllDescriptors = pipe.writer + (PipeHandle{1} << 32);
    for (PipeHandle none : {noPipe, beyondAllDescriptors}) {
        uint8_t byte = 0;
        uint32_t count = 99;
        EXPECT_FALSE(writePipe(none, &byte, 1, count));
        EXPECT_EQ(count, 0u);
        count = 99;
        EXPECT_FALSE(readPipe(none, &byte, 1, count));
        EXPECT_EQ(count, 0u);
    }
}
