#include <atomic>
#include <chrono>

#include "calls.h"
#include "open_printer.h"
#include "support/system.h"

namespace {

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

TEST(Opening, waitsForAPrinterThatAnotherProcessHasAPageOpenOn) {
    FakeBus bus;
    BusyProcess process;
    std::atomic<bool> opened = false;
    std::jthread opening([&] {
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        opened = true;
        zprusb_close();
    });
    while (bus.countCalls("Open 0") == 0) std::this_thread::yield();
    EXPECT_FALSE(opened);
    process.endPage();
}
