#include "device/transport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "calls.h"
#include "open_printer.h"

using namespace device;

namespace {

constexpr auto transferLimit = std::chrono::milliseconds(10000 - 50);  // clocks differ a little
using Clock = std::chrono::steady_clock;

struct ForcedEnd : OpenPrinter {};

}  // namespace

TEST(Transport, writesARequestWholeOrRefusesIt) {
    const Bytes bytes = countingBytes(1025, 1);
    test::Pipe pipe;
    PipeWriter writer{pipe.writer};
    for (const auto& [length, code] : {std::pair{1025u, 1006}, {1024u, 0}, {1u, 0}, {0u, 2600}}) {
        const Result result = workerWrite(writer, bytes.data(), length);
        ASSERT_EQ(result.success, code == 0);
        EXPECT_EQ(result.code, code);
        if (code != 0) continue;  // had it been sent, it would arrive in the place of the next one
        EXPECT_EQ(pipe.receive(), Bytes(bytes.begin(), bytes.begin() + length));
    }
}

TEST(Transport, readsNoMoreOfAnAnswerThanItAsksFor) {
    test::Pipe pipe;
    PipeReader reader{pipe.reader};
    pipe.send(countingBytes(301 + 512, 1));
    uint8_t bytes[512];
    uint32_t count = 0;
    const std::pair<decltype(&workerRead), uint32_t> reads[] = {
        {workerRead, 300}, {directRead, 512}, {directRead, 1}};
    for (const auto& [read, expected] : reads) {
        EXPECT_TRUE(read(reader, bytes, count));
        ASSERT_EQ(count, expected);
    }
}

TEST(Transport, takesADirectReadOfNothingForASuccess) {
    PipeReader reader{test::openNothing()};
    uint8_t bytes[512];
    uint32_t count = 9;
    const Result result = directRead(reader, bytes, count);
    EXPECT_TRUE(result);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(result.code, 0);
    EXPECT_FALSE(lengthPrefixedRead(reader, bytes, count));
    test::closePipeEnd(reader.pipe);
}

// Unplugged in the middle: the handle may be another file's from now on.
TEST(Transport, writesNoFurtherChunkToAHandleThatWasTakenAway) {
    const Bytes bytes(8 << 20);
    test::Pipe pipe;
    PipeWriter writer{pipe.writer};
    size_t received = 0;
    std::jthread printer([&] {
        for (std::optional<Bytes> piece; (piece = pipe.receive()); received += piece->size())
            if (received == 0) writer.pipe = platform::noPipe;
    });
    const Result result = directWriteInChunks(writer, bytes.data(), 8 << 20);
    EXPECT_FALSE(result);
    EXPECT_EQ(result.code, 2600);
    pipe.closeWriter();
    printer.join();
    EXPECT_LT(received, bytes.size());
}

TEST_F(ForcedEnd, ofAReadLeavesThePrinterUsableAndItsReadPipeOpen) {
    bus[0].answer(getStatus, [](const Bytes&) { return std::nullopt; });
    const auto start = Clock::now();
    EXPECT_EQ(statusAtOnce(), 2600);
    EXPECT_GE(Clock::now() - start, transferLimit);
    EXPECT_TRUE(readPipeAbandoned);
    EXPECT_FALSE(writePipeAbandoned);
    bus[0].answer(getStatus, errorAnswer(0x31));
    EXPECT_EQ(statusAtOnce(), 2101);
    zprusb_close();
    EXPECT_EQ(bus.countCalls("ClosePipe read"), 0u);
    EXPECT_EQ(bus.countCalls("ClosePipe write"), 1u);
}

TEST_F(ForcedEnd, ofAWriteLeavesTheWritePipesOpen) {
    const Bytes request(1024);
    const test::Pipe nobodyReads;
    PipeWriter writer{nobodyReads.writer};
    auto start = Clock::now();
    Result result;
    while ((result = workerWrite(writer, request.data(), 1024))) start = Clock::now();
    EXPECT_GE(Clock::now() - start, transferLimit);
    EXPECT_EQ(result.code, 2600);
    EXPECT_TRUE(writePipeAbandoned);
    EXPECT_FALSE(readPipeAbandoned);
    zprusb_close();
    EXPECT_EQ(bus.countCalls("ClosePipe read"), 1u);
    EXPECT_EQ(bus.countCalls("ClosePipe write"), 0u);
}
