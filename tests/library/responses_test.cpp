#include "protocol/responses.h"

#include <gtest/gtest.h>

#include <map>

#include "fake_bus.h"
#include "protocol/response_parser.h"
#include "transfer_pipes.h"

using namespace protocol;

namespace {

using Codes = std::map<unsigned, uint16_t>;
const Codes numbers{{1, 2601},    {2, 2602},    {3, 2603},    {4, 2604},    {5, 2605},    {0x21, 2100},
                    {0x31, 2101}, {0x33, 2103}, {0x34, 2104}, {0x35, 2105}, {0x36, 2106}, {0x37, 2107},
                    {0x38, 2108}, {0x39, 2109}, {0x61, 2200}, {0x62, 2201}, {0x63, 2202}, {0x6A, 2209},
                    {0x6B, 2210}, {0x6C, 2211}, {0x6D, 2212}};
const Codes groups{{1, 2500}, {2, 2500}, {3, 2500}, {4, 2500}, {5, 2307}};
const Codes detailsOfGroup6{{1, 2309}, {2, 2306}, {3, 2306}, {4, 2306},  {5, 2305}, {6, 2305},
                            {7, 2305}, {8, 2305}, {9, 2305}, {11, 2309}, {16, 2310}};

uint16_t codeIn(const Codes& codes, unsigned number) {
    return codes.contains(number) ? codes.at(number) : uint16_t{2504};
}

struct Outcome {
    bool success = true;
    uint16_t code = 1;
    Bytes data{};
    uint8_t count = 0;

    bool operator==(const Outcome&) const = default;
};

Bytes start(const auto& bytes, uint32_t count) {
    return Bytes(bytes.begin(), bytes.begin() + count);
}

enum Receiver { status, ack, wholeAnswer, payload, countedPayload };
constexpr Receiver allReceivers[] = {status, ack, wholeAnswer, payload, countedPayload};

Outcome receive(Receiver receiver, PipeReader& reader) {
    Outcome got;
    Answer answer;
    Payload data;
    if (receiver == status) got.success = receiveStatus(reader, &got.code);
    if (receiver == ack) got.success = receiveAck(reader, &got.code);
    if (receiver == wholeAnswer) got.success = receiveWholeAnswer(reader, answer, &got.code);
    if (receiver == payload) got.success = receivePayload(reader, data, &got.code);
    if (receiver == countedPayload) got.success = receiveCountedPayload(reader, data, got.count, &got.code);
    got.data = start(data.bytes, data.count);
    if (receiver == wholeAnswer && got.success) got.data = start(answer.bytes, answer.count);
    return got;
}

}  // namespace

TEST(ResponseParser, knowsEveryStatusNumber) {
    for (unsigned number = 0; number <= 255; ++number) {
        if (number == 0x11) continue;
        const Answer answer{.bytes{1, 0x31, 5, 0, 0, 0, 0, static_cast<uint8_t>(number)}};
        uint16_t code = 1;
        const uint16_t expected = number == 0 ? uint16_t{0} : codeIn(number <= 5 ? Codes{} : numbers, number);
        const bool ready = number == 0 || (0x61 <= number && number <= 0x6D && numbers.contains(number));
        EXPECT_EQ(parseResponse(ParseMode::Status, answer, &code), ready) << number;
        EXPECT_EQ(code, expected) << number;
    }
}

TEST(ResponseParser, knowsEveryDeviceErrorInAnAnswerOfItsKind) {
    for (unsigned pair = 0; pair <= 0xFFFF; ++pair) {
        const auto group = static_cast<uint8_t>(pair / 0x100), detail = static_cast<uint8_t>(pair);
        const uint16_t expected = group == 6 ? codeIn(detailsOfGroup6, detail) : codeIn(groups, group);
        for (const ParseMode mode : {ParseMode::ErrorAnswer, ParseMode::Status}) {
            for (const uint8_t kind : Bytes{1, 2}) {
                const bool fits = (kind == 2) == (mode == ParseMode::ErrorAnswer);
                uint16_t code = 1;
                ASSERT_FALSE(parseResponse(mode, {.bytes{kind, 0x11, group, detail, 0, 0, 0, 0x11}}, &code));
                ASSERT_EQ(code, fits ? expected : 2504) << pair;
            }
        }
    }
}

TEST(Receivers, takeAnAnswerOfAnyLengthAsFarAsItGoes) {
    constexpr uint32_t header = 10, complete = 58;
    Bytes longest = normalAnswer(::statusPayload(7, 1, 1), 0x62);
    longest.insert(longest.end(), {1, 2, 3});
    AnswerPipe pipe;
    for (const uint8_t kind : Bytes{0, 1, 3, 255}) {
        for (uint32_t length = 1; length <= longest.size(); ++length) {
            SCOPED_TRACE(testing::Message() << "kind " << int{kind} << ", " << length << " bytes");
            Bytes answer = start(longest, length);
            answer[0] = kind;
            const auto outcome = [&](Receiver receiver) {
                pipe.give(answer);
                return receive(receiver, pipe.reader);
            };
            const bool whole = length == complete;
            const uint16_t code = whole ? 0 : 2600;
            const bool bothFlags = length > header + 39;
            const Outcome decoded = bothFlags ? Outcome{false, 2100} : Outcome{true, 0};
            const Bytes body(answer.begin() + std::min(length, header),
                             answer.begin() + std::min(length, complete));
            EXPECT_EQ(outcome(status), (kind == 1 ? decoded : Outcome{whole, code}));
            EXPECT_EQ(outcome(ack), (Outcome{whole, code}));
            EXPECT_EQ(outcome(wholeAnswer), (Outcome{true, code, answer}));
            EXPECT_EQ(outcome(payload), (Outcome{true, code, body}));
            EXPECT_EQ(outcome(countedPayload), (Outcome{true, code, body, uint8_t(length > 8 ? 48 : 0)}));
        }
    }
}

TEST(Receivers, failOnEveryErrorAnswerThoughItIsCutAndHandOutNothing) {
    AnswerPipe pipe;
    for (unsigned number = 0; number <= 255; ++number) {
        const Bytes whole{2, static_cast<uint8_t>(number), 5, 0, 0, 0, 0, 0x21, 2, 0, 8, 9};
        const uint16_t code = number == 0x11 ? 2307 : codeIn(numbers, number);
        for (const Receiver receiver : allReceivers) {
            const bool folds = receiver == status || receiver == ack;
            for (const uint32_t length : {3u, 9u, 12u}) {
                pipe.give(start(whole, length));
                EXPECT_EQ(receive(receiver, pipe.reader),
                          (Outcome{false, folds ? std::min<uint16_t>(code, 2600) : code}))
                    << number;
            }
        }
    }
}

TEST(Receivers, failWith2600WhenNothingCanBeRead) {
    AnswerPipe ended;
    ended.close(ended.ends.testEnd);
    PipeReader none, nothing;
    nothing.pipe = openNothing();
    for (PipeReader* reader : {&none, &nothing, &ended.reader}) {
        for (const Receiver receiver : allReceivers)
            EXPECT_EQ(receive(receiver, *reader), (Outcome{false, 2600}));
    }
    closeEnd(nothing.pipe);
}
