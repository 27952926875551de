#include "protocol/requests.h"

#include <gtest/gtest.h>

#include "fake_bus.h"
#include "transfer_pipes.h"

using namespace protocol;

namespace {

PageParameters samplePage() {
    return {.copies{0x0302},
            .pageId = 0x05A7,
            .mediaCode = 0xF3,
            .printWidth = 0x00012345,
            .printLength = 0x12345678,
            .sectionWidth = 0xA1A2A3A4,
            .sectionLengths{0x11111111, 0x22222222, 0x33333333, 0x44444444, 0x55555555},
            .sectionIndex = 0,
            .printOption20 = 0x06,
            .printOption21 = 0x0807,
            .printOption22 = 0x0A09};
}

using Code = uint16_t*;
using Writer = PipeWriter&;

/// A request that carries bytes of the caller's, and the counts that it accepts.
struct CountedRequest {
    bool (*send)(Writer writer, const uint8_t* data, uint8_t count, Code code);
    uint8_t commandNo;
    Bytes (*fields)(uint8_t count);
    unsigned least;
    unsigned most;
};

const CountedRequest countedRequests[] = {
    {[](Writer w, const uint8_t* data, uint8_t n, Code c) {
         return sendSetEepromMaintenance(w, 0x64, n, data, c);
     },
     6,
     [](uint8_t n) {
         return Bytes{0x64, n};
     },
     0, 255},
    {sendSetPrinterUniqueString, 7, [](uint8_t n) { return Bytes{n}; }, 1, 23},
    {sendUniversal, 0xFF, [](uint8_t) { return Bytes{}; }, 1, 247},
};

Bytes join(Bytes bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return bytes;
}

}  // namespace

TEST(Requests, carryTheCallersBytesOrRefuseTheirCount) {
    RequestPipe pipe;
    for (const CountedRequest& request : countedRequests) {
        for (unsigned count = 0; count <= 255; ++count) {
            SCOPED_TRACE(testing::Message() << "command " << int{request.commandNo} << ", count " << count);
            const bool accepted = request.least <= count && count <= request.most;
            const auto n = static_cast<uint8_t>(count);
            const Bytes data = countingBytes(count, 0x31);
            uint16_t code = 1;
            ASSERT_EQ(request.send(pipe.writer, data.data(), n, &code), accepted);
            ASSERT_EQ(code, accepted ? 0 : 1006);
            if (!accepted) continue;  // had it been sent, it would arrive in the place of the next one
            const Bytes payload = join(request.fields(n), data);
            const auto low = static_cast<uint8_t>(payload.size()),
                       high = static_cast<uint8_t>(payload.size() / 256);
            ASSERT_EQ(pipe.next(), join({request.commandNo, 0xC0, low, high}, payload));
        }
    }
    EXPECT_TRUE(pipe.endsHere());
}

TEST(Requests, forALongPrintCarryTheSizeOfTheirSection) {
    const Bytes wholeSize{0x45, 0x23, 0x01, 0x00, 0x78, 0x56, 0x34, 0x12};
    RequestPipe pipe;
    PageParameters page = samplePage();
    for (uint8_t section = 0; section <= 5; ++section) {
        ASSERT_TRUE(sendPrintLong(pipe.writer, page, section, nullptr));
        const Bytes size =
            section == 0 ? wholeSize : join({0xA4, 0xA3, 0xA2, 0xA1}, Bytes(4, uint8_t(0x11 * section)));
        const Bytes head = join({2, 0x40, 19, 0, 0xA7, 0x02, 0x03, section}, size);
        EXPECT_EQ(pipe.next(), join(head, {0xF3, 0x06, 0, 0x07, 0x08, 0x09, 0x0A}));
        EXPECT_EQ(page.sectionIndex, section);
    }
}
