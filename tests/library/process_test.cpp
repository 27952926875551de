#include <atomic>
#include <chrono>
#include <iostream>

#include "calls.h"
#include "open_printer.h"
#include "support/role.h"
#include "support/system.h"

namespace {

/// Opens a page on the first printer, and ends it when the input ends.
const test::Role holder("hold-printer", [](const std::string& pathStart) {
    FakeBus::pathStart = pathStart;
    FakeBus bus;
    const bool holds = zprusb_open(nullptr) == 1 && zprusb_startpage(nullptr, nullptr) == 1;
    std::cout << (holds ? "holds" : "failed") << std::endl;
    std::cin.get();
    zprusb_endpage(nullptr);
    zprusb_close();
    return 0;
});

/// Another process that has a page open on the first printer.
struct BusyProcess : test::ChildProcess {
    BusyProcess() : ChildProcess(test::ownProgram(), {"hold-printer", FakeBus::pathStart}) {
        EXPECT_EQ(readLine(), "holds");
    }
    void endPage() {
        closeInput();
        EXPECT_TRUE(endedWell());
    }
};

}  // namespace

TEST_F(OpenPrinter, isBusyForTwoSecondsACallWhileAnotherProcessHasAPageOpen) {
    BusyProcess process;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_PRINTER_BUSY);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(4 * 480));
    EXPECT_LT(waited, std::chrono::seconds(6));
    process.endPage();
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
}

TEST_F(OpenPrinter, isBusyOnceAfterItsOwnerHasEndedWithoutEndingThePage) {
    for (int round = 0; round < 3; ++round) {
        {
            BusyProcess process;
            process.kill();
        }
        EXPECT_EQ(statusAtOnce(), ZPRUSB_PRINTER_BUSY);
        EXPECT_EQ(statusAtOnce(), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeElsewhere(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        EXPECT_EQ(statusAtOnce(), ZPRUSB_PRINTER_BUSY);
        EXPECT_EQ(statusAtOnce(), ZPRUSB_SUCCESS);
    }
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
}

TEST(Opening, waitsForAPrinterOfAnotherProcessAndKeepsNoOtherCallWaiting) {
    FakeBus bus(2);
    std::swap(bus[0].path, bus[1].path);
    std::swap(bus[0].handle, bus[1].handle);
    BusyProcess process;
    EXPECT_EQ(zprusb_MakeObject(0), 0u);
    std::atomic<int> opened = 0;
    const auto open = [&] {
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(listPrinters(), (Bytes{1, 0}));
        ++opened;
    };
    std::jthread first(open);
    while (bus.countCalls("Open 1") == 0) std::this_thread::yield();
    std::jthread second(open);
    EXPECT_EQ(objectCounts().second, 1);
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS) << "of the printer that was found before";
    EXPECT_EQ(opened, 0);
    process.endPage();
    first.join();
    second.join();
    EXPECT_EQ(bus.countCalls("Open"), 2u);
    zprusb_close();
}

TEST(Opening, findsAllPrintersThoughAnotherThreadListsThemMeanwhile) {
    FakeBus bus(2);
    BusyProcess process;
    std::jthread other([&] {
        while (bus.countCalls("Open 0") == 0) std::this_thread::yield();
        std::jthread listing([] { EXPECT_EQ(listPrinters(), (Bytes{0, 1})); });
        platform::sleepMilliseconds(30);
        process.endPage();
    });
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    other.join();
    EXPECT_EQ(listPrinters(), (Bytes{0, 1}));
    zprusb_close();
}

TEST(Opening, isGivenUpWhenTheLibraryIsClosedMeanwhile) {
    FakeBus bus;
    BusyProcess process;
    std::jthread opening([] { EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_NO_PRINTER_FOUND); });
    while (bus.countCalls("Open 0") == 0) std::this_thread::yield();
    zprusb_close();
    opening.join();
    EXPECT_EQ(bus.countCalls("Close 0"), 1u);
    process.endPage();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    zprusb_close();
}
