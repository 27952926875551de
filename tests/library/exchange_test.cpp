#include "protocol/exchange.h"

#include <gtest/gtest.h>

#include <map>

#include "calls.h"
#include "fake_bus.h"
#include "protocol/answer_codes.h"
#include "protocol/requests.h"

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

enum Exchange { status, ack, wholeAnswer, payload, countedPayload };
constexpr Exchange allExchanges[] = {status, ack, wholeAnswer, payload, countedPayload};

struct Printer {
    Outcome ask(Exchange exchange) {
        Outcome got;
        Answer answer;
        Payload data;
        const Request request = request::getErrorLog();
        Result result;
        if (exchange == status) result = checkStatus(connection);
        if (exchange == ack) result = perform(connection, request);
        if (exchange == wholeAnswer) result = fetchStatus(connection, answer);
        if (exchange == payload) result = fetch(connection, request, data);
        if (exchange == countedPayload) result = fetchDirectly(connection, request, data, got.count);
        requests.receive();
        got.success = result.success;
        got.code = result.code;
        got.data = start(data.bytes, data.count);
        if (exchange == wholeAnswer && got.success) got.data = start(answer.bytes, answer.count);
        return got;
    }
    Outcome ask(Exchange exchange, const Bytes& answer) {
        answers.send(answer);
        return ask(exchange);
    }

    test::Pipe requests, answers;
    device::Connection connection{{requests.writer}, {answers.reader}};
};

}  // namespace

TEST(AnswerCodes, knowsEveryStatusNumber) {
    for (unsigned number = 0; number <= 255; ++number) {
        if (number == 0x11) continue;
        const Answer answer{.bytes{1, 0x31, 5, 0, 0, 0, 0, static_cast<uint8_t>(number)}};
        const uint16_t expected = number == 0 ? uint16_t{0} : codeIn(number <= 5 ? Codes{} : numbers, number);
        const bool ready = number == 0 || (0x61 <= number && number <= 0x6D && numbers.contains(number));
        const Result result = decodeStatusNumber(answer);
        EXPECT_EQ(result.success, ready) << number;
        noteCode(result.code);
        EXPECT_EQ(result.code, expected) << number;
    }
}

TEST(AnswerCodes, knowsEveryDeviceError) {
    for (unsigned pair = 0; pair <= 0xFFFF; ++pair) {
        const auto group = static_cast<uint8_t>(pair / 0x100), detail = static_cast<uint8_t>(pair);
        const uint16_t expected = group == 6 ? codeIn(detailsOfGroup6, detail) : codeIn(groups, group);
        const Answer answer{.bytes{0, 0x11, group, detail, 0, 0, 0, 0x11}};
        for (const auto decode : {decodeErrorAnswer, decodeStatusNumber}) {
            const Result result = decode(answer);
            ASSERT_FALSE(result);
            noteCode(result.code);
            ASSERT_EQ(result.code, expected) << pair;
        }
    }
}

TEST(Exchanges, takeAnAnswerOfAnyLengthAsFarAsItGoes) {
    constexpr uint32_t header = 10, complete = 58;
    Bytes longest = normalAnswer(::statusPayload(7, 1, 1), 0x62);
    longest.insert(longest.end(), {1, 2, 3});
    Printer printer;
    for (const uint8_t kind : Bytes{0, 1, 3, 255}) {
        for (uint32_t length = 1; length <= longest.size(); ++length) {
            SCOPED_TRACE(testing::Message() << "kind " << int{kind} << ", " << length << " bytes");
            Bytes answer = start(longest, length);
            answer[0] = kind;
            const auto outcome = [&](Exchange exchange) { return printer.ask(exchange, answer); };
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

TEST(Exchanges, failOnEveryErrorAnswerThoughItIsCutAndHandOutNothing) {
    Printer printer;
    for (unsigned number = 0; number <= 255; ++number) {
        const Bytes whole{2, static_cast<uint8_t>(number), 5, 0, 0, 0, 0, 0x21, 2, 0, 8, 9};
        const uint16_t code = number == 0x11 ? 2307 : codeIn(numbers, number);
        for (const Exchange exchange : allExchanges) {
            const bool folds = exchange == status || exchange == ack;
            for (const uint32_t length : {3u, 9u, 12u}) {
                EXPECT_EQ(printer.ask(exchange, start(whole, length)),
                          (Outcome{false, folds ? std::min<uint16_t>(code, 2600) : code}))
                    << number;
            }
        }
    }
}

TEST(Exchanges, failWith2600WhenNothingCanBeRead) {
    Printer printer;
    printer.answers.closeWriter();
    const uint64_t ended = printer.answers.reader, nothing = test::openNothing();
    for (const uint64_t pipe : {uint64_t{platform::noPipe}, nothing, ended}) {
        printer.connection.reader.pipe = pipe;
        for (const Exchange exchange : allExchanges) EXPECT_EQ(printer.ask(exchange), (Outcome{false, 2600}));
    }
    test::closePipeEnd(nothing);
}
