#include "calls.h"
#include "open_printer.h"
#include "support/system.h"

TEST(Objects, growInNumberUpToAHundredAndNeverShrink) {
    FakeBus bus;
    const struct {
        uint16_t wanted;
        uint32_t accepted;
        int count;
    } steps[] = {{0, 0, 1}, {101, 0, 1}, {65535, 0, 1}, {1, 1, 1},     {3, 1, 3},
                 {2, 0, 3}, {0, 0, 3},   {3, 1, 3},     {100, 1, 100}, {101, 0, 100}};
    for (const auto& step : steps) {
        EXPECT_EQ(zprusb_MakeObject(step.wanted), step.accepted) << step.wanted;
        EXPECT_EQ(objectCounts(), std::pair(0, step.count)) << step.wanted;
    }
    EXPECT_EQ(bus.calls(), std::vector<std::string>{"Open 0"});
    EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_SUCCESS);
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_OBJECT);
}

TEST(Objects, areServedBeforeAnyThreadIsBoundAndReleasedByAThreadThatNeverWas) {
    FakeBus bus;
    EXPECT_EQ(zprusb_MakeObject(1), 1u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    std::jthread(zprusb_close).join();
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(bus.countCalls("Close 0"), 1u);
}

TEST_F(OpenPrinter, changesNothingWhenItIsOpenedAgain) {
    const auto calls = bus.calls();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    EXPECT_EQ(bus.calls(), calls);
    EXPECT_EQ(objectCounts(), std::pair(1, 1));
    EXPECT_EQ(zprusb_attachObjectCount(nullptr, nullptr), 1u);
}

TEST_F(OpenPrinter, isNotReleasedWhileAThreadIsBound) {
    EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_STILL_IN_USE);
    EXPECT_EQ(codeElsewhere(zprusb_ReleaseObject), ZPRUSB_STILL_IN_USE);
    std::jthread(zprusb_close).join();
    EXPECT_EQ(objectCounts(), std::pair(1, 1));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    zprusb_close();
    EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_SUCCESS);
    EXPECT_EQ(bus.calls(),
              (std::vector<std::string>{"Open 0", "Close 0", "ClosePipe write 0", "ClosePipe read 0"}));
}

TEST(Opening, failsWithoutAPrinterAndLeavesNothing) {
    FakeBus bus(0);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_NO_PRINTER_FOUND);
    const unsigned resources = test::resourceCount();
    EXPECT_EQ(zprusb_MakeObject(3), 0u);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_NO_PRINTER_FOUND);
    EXPECT_TRUE(test::resourcesFallTo(resources));
    bus.add("\\\\?\\usb#vid_1234&pid_5678#camera");
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_NO_PRINTER_FOUND);
    EXPECT_EQ(bus.calls(), (std::vector<std::string>{"Open 0", "Close 0"}));
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_OBJECT);
    bus.add(FakeBus::printerPath(1));
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    zprusb_close();
}

TEST(Opening, mayFollowClosingAnyNumberOfTimes) {
    FakeBus bus(2);
    unsigned resources = 0;
    for (int round = 0; round < 50; ++round) {
        EXPECT_EQ(zprusb_MakeObject(2), 1u);
        if (round % 10 == 0) {
            EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
            std::jthread([] {
                EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
                EXPECT_EQ(objectCounts(), std::pair(2, 2));
                zprusb_close();
            }).join();
            zprusb_close();
        }
        EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_SUCCESS);
        if (round == 10) resources = test::resourceCount();
    }
    EXPECT_TRUE(test::resourcesFallTo(resources));
}
