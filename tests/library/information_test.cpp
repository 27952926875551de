#include "printer/information.h"

#include "open_printer.h"

namespace {

constexpr uint8_t otherError = 0x31;  // an error answer that says nothing about the connection

struct Information : OpenPrinter {
    Information() { answerStatus(0x11); }
    void answerStatus(uint8_t statusCode) {
        Bytes answer = normalAnswer(statusPayload(9, 0x31, 0x32), statusCode);
        answer[2] = 6;
        answer[3] = 11;
        bus[0].answer(getStatus, answer);
    }
    /// What is sent for one call, which has to return the expected value.
    std::vector<Bytes> requestsOf(uint16_t tag, uint8_t* buffer, uint32_t& length, uint32_t expected) {
        bus[0].forgetPieces();
        EXPECT_EQ(zprusb_getPrinterInfo(tag, buffer, &length), expected);
        return bus[0].pieces();
    }
};

Bytes readEeprom(uint8_t address, uint8_t count) {
    return {5, 0xC0, 2, 0, address, count};
}

struct Record {
    uint16_t tag;
    Bytes bytes;
    std::vector<Bytes> requests;
    bool keepsLength = false;
};

const Bytes statusRequest{1, 0, 0, 0};

Record mediaRecord() {
    Bytes bytes = mediaPayload({{0xF1, 15240, 10160}});
    bytes.back() = 0;  // the last byte of an entry is not handed out
    bytes.resize(151);
    return {0, bytes, {{2, 0, 0, 0}}};
}

Record firmwareRecord() {
    Record record{3, {7}, {}};
    for (uint8_t component = 1; component <= 7; ++component) {
        for (const uint8_t byte : countingBytes(38, component)) record.bytes.push_back(byte);
        record.requests.push_back({3, 0xC0, 1, 0, component});
    }
    return record;
}

const Record records[] = {
    mediaRecord(),
    firmwareRecord(),
    {4,
     {0x60, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0xA4, 0xA5, 0xA6, 0xA7, 0x68, 0x69,
      0x6A, 0x6B, 0x6C, 0x6D, 0x6E, 0x6F, 0xF8, 0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF},
     {readEeprom(0x60, 4), readEeprom(0x64, 4), readEeprom(0xA4, 4), readEeprom(0x68, 4), readEeprom(0x6C, 4),
      readEeprom(0xF8, 4), readEeprom(0xFC, 4)},
     true},
    {7, {6, 11}, {statusRequest}},
    {16,
     {9, 0x99, 0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F, 0x31, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 0xAF, 0x32},
     {statusRequest}},
    {25, countingBytes(23, 'A'), {{3, 0x80, 0, 0}}},
    {26,
     {0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x2B, 0x2C, 0x2D, 0x2E,
      0x2F},
     {readEeprom(0x20, 8), {9, 0xC0, 2, 0, 0, 0}},
     true},
    {50, countingBytes(61, 0x10), {{4, 0, 0, 0}}},
};

}  // namespace

TEST_F(Information, isHandedOutAsFarAsTheBufferGoes) {
    for (const Record& record : records) {
        const auto size = static_cast<uint32_t>(record.bytes.size());
        std::vector<Bytes> expectedRequests{statusRequest};
        expectedRequests.insert(expectedRequests.end(), record.requests.begin(), record.requests.end());
        for (const uint32_t capacity : {size, size + 50, size - 1, 1u, 0u}) {
            SCOPED_TRACE(testing::Message() << "tag " << record.tag << ", capacity " << capacity);
            Bytes buffer(400, 0xCC), expected(400, 0xCC);
            uint32_t length = capacity;
            EXPECT_EQ(requestsOf(record.tag, buffer.data(), length, 1), expectedRequests);
            EXPECT_EQ(length, std::min(size, capacity));
            std::copy_n(record.bytes.begin(), length, expected.begin());
            EXPECT_EQ(buffer, expected);
        }
        uint32_t length = 0;
        EXPECT_EQ(requestsOf(record.tag, nullptr, length, 1), std::vector<Bytes>(1, statusRequest));
        EXPECT_EQ(length, size);
    }
}

TEST_F(Information, isNotThereForAnUnknownTagOrWithoutALength) {
    const std::vector<Bytes> fourAttempts(4, statusRequest);
    for (const uint16_t tag : std::initializer_list<uint16_t>{1, 2, 5, 24, 255, 256, 0xFFFF}) {
        for (const bool withBuffer : {false, true}) {
            uint8_t buffer[400];
            uint32_t length = 400;
            EXPECT_EQ(requestsOf(tag, withBuffer ? buffer : nullptr, length, 0), fourAttempts) << tag;
            EXPECT_EQ(length, 0u);
        }
    }
    EXPECT_EQ(zprusb_getPrinterInfo(50, nullptr, nullptr), 0u);
}

TEST_F(Information, isNotHandedOutWhenAnyExchangeFails) {
    for (const Record& record : records) {
        for (size_t failing = 0; failing < record.requests.size(); ++failing) {
            SCOPED_TRACE(testing::Message() << "tag " << record.tag << ", exchange " << failing);
            const Bytes& request = record.requests[failing];
            for (const Bytes& each : record.requests) {
                bus[0].answer({each[0], each[1]}, [&request](const Bytes& piece) {
                    return piece == request ? errorAnswer(otherError) : normalAnswer({});
                });
            }
            Bytes buffer(300, 0xCC);
            uint32_t length = 300;
            EXPECT_EQ(requestsOf(record.tag, buffer.data(), length, 0).size(), 4 * (failing + 2));
            EXPECT_EQ(length, record.keepsLength ? 300u : 0u);
            EXPECT_EQ(buffer, Bytes(300, 0xCC));
        }
    }
}

TEST_F(Information, isHandedOutWholeAfterAFailedAttempt) {
    bus[0].answerOnce(getErrorLog, errorAnswer(3));
    uint8_t buffer[61];
    uint32_t length = 61;
    EXPECT_EQ(requestsOf(50, buffer, length, 1).size(), 4u);
    EXPECT_EQ(length, 61u);
}

TEST_F(Information, isReadUnlessTheStatusCheckFindsNoConnection) {
    const std::pair<Bytes, bool> cases[] = {{errorAnswer(1), false},
                                            {errorAnswer(5), false},
                                            {errorAnswer(0x21), true},
                                            {errorAnswer(0xFF), true},
                                            {normalAnswer(statusPayload(), otherError), true}};
    for (const auto& [status, isRead] : cases) {
        bus[0].answer(getStatus, status);
        for (const uint16_t tag : std::initializer_list<uint16_t>{4, 25, 26, 50}) {
            uint8_t buffer[61];
            uint32_t length = 61;
            const auto requests = requestsOf(tag, buffer, length, isRead);
            EXPECT_EQ(length != 0, isRead);
            EXPECT_EQ(requests == std::vector<Bytes>(4, statusRequest), !isRead);
        }
    }
}

TEST_F(Information, ofNoPrinterLeavesTheLengthAlone) {
    device::PrinterObject unselected;
    uint8_t buffer[61];
    for (const Record& record : records) {
        uint32_t length = 61;
        EXPECT_FALSE(printer::getPrinterInfo(unselected, record.tag, buffer, &length));
        EXPECT_EQ(length, 61u);
    }
}

TEST_F(Information, aboutADeviceErrorIsZeroWithoutOne) {
    answerStatus(0x21);
    uint8_t record[2] = {9, 9};
    uint32_t length = 2;
    EXPECT_EQ(zprusb_getPrinterInfo(7, record, &length), 1u);
    EXPECT_EQ(Bytes(record, record + 2), (Bytes{0, 0}));
}
