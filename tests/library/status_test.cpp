#include "printer/status.h"

#include "calls.h"
#include "open_printer.h"

namespace {

struct Status : OpenPrinter {
    Status() : OpenPrinter(3) {}
};

}  // namespace

TEST_F(Status, isCondensedIntoOneCode) {
    Bytes otherKind = normalAnswer({}), cut = normalAnswer({1, 2, 3}), cutOtherKind = cut;
    otherKind[0] = cutOtherKind[0] = 3;
    cut.pop_back();
    cutOtherKind.pop_back();
    const std::pair<Bytes, uint16_t> cases[] = {{normalAnswer(statusPayload(7, 1, 0)), 0},
                                                {normalAnswer(statusPayload(7, 0, 1)), 0},
                                                {normalAnswer(statusPayload(7, 1, 2)), 2100},
                                                {normalAnswer(statusPayload(), 0x61), 0},
                                                {normalAnswer(statusPayload(7, 1, 1), 0x6D), 2100},
                                                {normalAnswer(statusPayload(), 0x32), 2504},
                                                {normalAnswer(statusPayload(7, 1, 1), 0x39), 2109},
                                                {errorAnswer(0x61), 2200},
                                                {errorAnswer(3), 2600},
                                                {errorAnswer(0x11, 6, 11), 2309},
                                                {otherKind, 0},
                                                {cut, 0},
                                                {cutOtherKind, 2600}};
    for (const auto& [answer, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(answer));
        bus[0].answer(getStatus, answer);
        bus[0].forgetPieces();
        EXPECT_EQ(codeOf(zprusb_status), expected);
        EXPECT_EQ(zprusb_status(nullptr), expected == 0);
        EXPECT_EQ(bus[0].countRequests(getStatus), expected == 0 ? 2u : 8u);
    }
}

TEST_F(Status, hasTheCodeOfTheLastAttempt) {
    for (const uint8_t error : Bytes{0x21, 0x31, 0x33}) bus[0].answerOnce(getStatus, errorAnswer(error));
    EXPECT_EQ(codeOf(zprusb_status), 0);
    for (const uint8_t error : Bytes{0x21, 0x31, 0x33, 0x34}) bus[0].answerOnce(getStatus, errorAnswer(error));
    EXPECT_EQ(codeOf(zprusb_status), 2104);
}

TEST_F(Status, ofSeveralPrintersIsGivenInTheOrderOfTheList) {
    bus[1].answer(getStatus, errorAnswer(0x31));
    bus[2].unplug();
    struct {
        Bytes list;
        std::vector<uint16_t> codes;
        uint32_t result;
    } const cases[] = {{{}, {}, 0},
                       {{5}, {2000}, 0},
                       {{0, 5}, {0, 2000}, 1},
                       {{1, 2, 127, 128, 254}, {2101, 2600, 2000, 2000, 2000}, 0},
                       {{1, 0, 1, 0}, {2101, 0, 2101, 0}, 1}};
    for (const auto& [list, codes, result] : cases) {
        Bytes ended = list;
        ended.push_back(0xFF);
        ended.push_back(0);
        std::vector<uint16_t> results(8, 9999), expected(8, 9999);
        std::copy(codes.begin(), codes.end(), expected.begin());
        EXPECT_EQ(zprusb_statusAll(ended.data(), results.data()), result);
        EXPECT_EQ(results, expected);
    }
}

TEST_F(Status, ofSeveralPrintersEndsAfter128) {
    Bytes endless(200, 5);
    endless[127] = 0;
    std::vector<uint16_t> results(200, 9999), expected(200, 9999);
    std::fill_n(expected.begin(), 127, uint16_t{2000});
    expected[127] = 0;
    EXPECT_EQ(zprusb_statusAll(endless.data(), results.data()), 1u);
    EXPECT_EQ(results, expected);
}

TEST_F(Status, ofSeveralPrintersAsksEachOnceAndKeepsTheSelection) {
    const uint8_t list[] = {0, 2, 0xFF};
    uint16_t results[2];
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(zprusb_statusAll(list, results), 1u);
    EXPECT_EQ(selectedPrinter(), 1u);
    EXPECT_EQ(codeOf(zprusb_status), 0);
    for (size_t number = 0; number < 3; ++number) EXPECT_EQ(bus[number].countRequests(getStatus), 1u) << number;
}

TEST_F(Status, ofSeveralPrintersLeavesTheLastPresentOneSelectedWhenNoneWas) {
    device::PrinterObject unselected;
    const uint8_t list[] = {0, 2, 5, 0xFF};
    uint16_t results[3], code = 1;
    EXPECT_TRUE(printer::queryStatusOfAll(unselected, list, results));
    EXPECT_EQ(unselected.deviceIndex, 2);
    EXPECT_TRUE(printer::queryStatus(unselected, &code));
    EXPECT_EQ(bus[2].countRequests(getStatus), 2u);
}
