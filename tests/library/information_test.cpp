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

struct Record {
    uint16_t tag;
    Bytes bytes;
    std::vector<Bytes> requests;
    bool keepsLength = false;
};

const Bytes statusRequest{1, 0, 0, 0};

Record mediaRecord() {
    Record record{0, mediaPayload({{0xF1, 15240, 10160}}), {{2, 0, 0, 0}}};
    record.bytes.back() = 0;  // the last byte of an entry is not handed out
    record.bytes.resize(151);
    return record;
}

/// Adds what the printer answers from this start on.
void append(Record& record, uint8_t start, size_t count, const Bytes& request) {
    for (const uint8_t byte : countingBytes(count, start)) record.bytes.push_back(byte);
    record.requests.push_back(request);
}

Record firmwareRecord() {
    Record record{3, {7}, {}};
    for (uint8_t component = 1; component <= 7; ++component)
        append(record, component, 38, {3, 0xC0, 1, 0, component});
    return record;
}

Record counterRecord() {
    Record record{4, {}, {}, true};
    for (const uint8_t address : Bytes{0x60, 0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC})
        append(record, address, 4, {5, 0xC0, 2, 0, address, 4});
    return record;
}

Record maintenanceRecord() {
    Record record{26, {}, {}, true};
    append(record, 0x20, 8, {5, 0xC0, 2, 0, 0x20, 8});
    append(record, 0x26, 10, {9, 0xC0, 2, 0, 0, 0});
    return record;
}

const Bytes statusBytes{9,    0x99, 0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F,
                        0x31, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 0xAF, 0x32};
const Record records[] = {
    mediaRecord(),
    firmwareRecord(),
    counterRecord(),
    {7, {6, 11}, {statusRequest}},
    {16, statusBytes, {statusRequest}},
    {25, countingBytes(23, 'A'), {{3, 0x80, 0, 0}}},
    maintenanceRecord(),
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
    uint8_t buffer[400];
    for (const uint16_t tag : std::initializer_list<uint16_t>{1, 2, 5, 24, 255, 256, 0xFFFF}) {
        for (uint8_t* const room : {static_cast<uint8_t*>(nullptr), buffer}) {
            uint32_t length = 400;
            EXPECT_EQ(requestsOf(tag, room, length, 0), std::vector<Bytes>(4, statusRequest)) << tag;
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
    uint8_t buffer[61];
    for (const uint8_t error : Bytes{1, 5, 0x21, 0xFF}) {
        uint32_t length = 61;
        bus[0].answer(getStatus, errorAnswer(error));
        EXPECT_EQ(requestsOf(50, buffer, length, error > 5).size(), error > 5 ? 2u : 4u);
        EXPECT_EQ(length, error > 5 ? 61u : 0u);
    }
}

TEST_F(Information, ofNoPrinterLeavesTheLengthAlone) {
    device::PrinterObject unselected;
    uint8_t buffer[61];
    uint32_t length = 61;
    EXPECT_FALSE(printer::getPrinterInfo(unselected, 50, buffer, &length));
    EXPECT_EQ(length, 61u);
}

TEST_F(Information, aboutADeviceErrorIsZeroWithoutOne) {
    answerStatus(0x21);
    Bytes record{9, 9};
    uint32_t length = 2;
    EXPECT_EQ(zprusb_getPrinterInfo(7, record.data(), &length), 1u);
    EXPECT_EQ(record, (Bytes{0, 0}));
}
