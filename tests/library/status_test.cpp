#include "printer/status.h"

#include "calls.h"
#include "open_printer.h"

namespace {

struct Status : OpenPrinters<3> {};

}  // namespace

TEST_F(Status, isNotReadyWithBothFlagsUnlessItsNumberSaysMore) {
    const std::pair<Bytes, uint16_t> cases[] = {{normalAnswer(statusPayload(7, 1, 0)), 0},
                                                {normalAnswer(statusPayload(7, 0, 1)), 0},
                                                {normalAnswer(statusPayload(7, 1, 2)), 2100},
                                                {normalAnswer(statusPayload(7, 1, 1), 0x39), 2109}};
    for (const auto& [answer, expected] : cases) {
        bus[0].answer(getStatus, answer);
        EXPECT_EQ(codeOf(zprusb_status), expected);
    }
}

TEST_F(Status, hasTheCodeOfTheLastAttempt) {
    for (const uint8_t error : Bytes{0x21, 0x31, 0x33}) bus[0].answerOnce(getStatus, errorAnswer(error));
    EXPECT_EQ(codeOf(zprusb_status), 0);
    for (const uint8_t error : Bytes{0x21, 0x31, 0x33, 0x34}) bus[0].answerOnce(getStatus, errorAnswer(error));
    EXPECT_EQ(codeOf(zprusb_status), 2104);
}

TEST_F(Status, ofSeveralPrintersIsAskedOnceInTheOrderOfTheListAndKeepsTheSelection) {
    bus[1].answer(getStatus, errorAnswer(0x31));
    bus[2].unplug();
    struct {
        Bytes list;
        std::vector<uint16_t> codes;
        uint32_t result;
    } const cases[] = {{{255}, {}, 0},
                       {{5, 255, 0}, {2000}, 0},
                       {{0, 5, 255}, {0, 2000}, 1},
                       {{1, 2, 127, 128, 254, 255}, {2101, 2600, 2000, 2000, 2000}, 0},
                       {{1, 0, 1, 0, 255}, {2101, 0, 2101, 0}, 1}};
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    for (const auto& [list, codes, result] : cases) {
        std::vector<uint16_t> results(8, 9999), expected = codes;
        expected.resize(8, 9999);
        EXPECT_EQ(zprusb_statusAll(list.data(), results.data()), result);
        EXPECT_EQ(results, expected);
        EXPECT_EQ(selectedPrinter(), 1u);
    }
    for (const size_t number : {0, 1}) EXPECT_EQ(bus[number].countRequests(getStatus), 3u) << number;
    EXPECT_EQ(codeOf(zprusb_status), 2101);
}

TEST_F(Status, ofSeveralPrintersLeavesTheLastPresentOneSelectedWhenNoneWas) {
    device::PrinterObject unselected;
    const uint8_t list[] = {0, 2, 5, 0xFF};
    uint16_t results[3];
    EXPECT_TRUE(printer::queryStatusOfAll(unselected, list, results));
    EXPECT_EQ(unselected.deviceIndex, 2);
    EXPECT_TRUE(printer::queryStatus(unselected));
    EXPECT_EQ(bus[2].countRequests(getStatus), 2u);
}
