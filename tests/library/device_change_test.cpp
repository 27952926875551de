#include <chrono>
#include <functional>

#include "api/internal.h"
#include "api/object_table.h"
#include "calls.h"
#include "common/device_change.h"
#include "open_printer.h"
#include "operations.h"
#include "platform/thread.h"
#include "support/latch.h"

namespace {

struct PluggedPrinters : OpenPrinters<2> {
    /// Unplugs a printer and waits until the library has closed it, as often as given by then.
    void unplug(size_t number, size_t times = 1) {
        bus[number].unplug();
        EXPECT_TRUE(bus.isClosedOnAChange(number, times));
    }

    void expectPipesClosed(size_t number, size_t times) {
        EXPECT_EQ(bus.countCalls("ClosePipe write " + std::to_string(number)), times);
        EXPECT_EQ(bus.countCalls("ClosePipe read " + std::to_string(number)), times);
        EXPECT_EQ(bus.countCalls("ClosePipe unknown"), 0u);
    }
};

}  // namespace

TEST_F(PluggedPrinters, areDeselectedAndClosedWhenTheyAreUnplugged) {
    unplug(0);
    EXPECT_EQ(selectedPrinter(), 255u);
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_NO_PRINTER);
    for (const Operation& operation : operations) {
        const uint16_t expected = operation.reserves ? ZPRUSB_NO_PRINTER : ZPRUSB_COMMUNICATION;
        EXPECT_EQ(codeOf(operation.call), expected) << operation.name;
    }
    EXPECT_EQ(codeOf(zprusb_openForUpdate, 0u), ZPRUSB_SUCCESS);
    const uint8_t data = 1;
    uint32_t length = 1;
    EXPECT_EQ(codeOf(zprusb_checkUpdateTarget), ZPRUSB_NO_PRINTER);
    EXPECT_EQ(codeOf(zprusb_startUpdate, uint8_t{1}, 0u, length), ZPRUSB_NO_PRINTER);
    EXPECT_EQ(codeOf(zprusb_writeUpdateData, &data, &length), ZPRUSB_NO_PRINTER);
    EXPECT_EQ(length, 0u);
    expectPipesClosed(0, 1);
    EXPECT_EQ(listPrinters(), Bytes{1});
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
}

TEST_F(PluggedPrinters, comeBackWhenTheyArePluggedInAndListed) {
    for (size_t round = 1; round <= 3; ++round) {
        unplug(0, round);
        bus[0].plugIn();
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_PRINTER);
        EXPECT_EQ(listPrinters(), (Bytes{0, 1}));
        EXPECT_EQ(zprusb_selectPrinter(0, nullptr), 0u);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
        expectPipesClosed(0, round);
    }
}

TEST_F(PluggedPrinters, thatNoObjectUsesLoseTheirPipesWhenTheyComeBack) {
    unplug(1);
    expectPipesClosed(1, 0);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    bus[1].plugIn();
    EXPECT_EQ(listPrinters(), (Bytes{0, 1}));
    expectPipesClosed(1, 1);
}

TEST_F(PluggedPrinters, haveTheirPipesClosedOnceThoughTwoObjectsUseThem) {
    EXPECT_EQ(zprusb_MakeObject(2), 1u);
    EXPECT_EQ(selectedPrinter(), 0u);
    std::jthread([&] {
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(selectedPrinter(), 0u);
        unplug(0);
        EXPECT_EQ(selectedPrinter(), 255u);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_PRINTER);
        zprusb_close();
    }).join();
    EXPECT_EQ(selectedPrinter(), 255u);
    zprusb_close();
    expectPipesClosed(0, 1);
    expectPipesClosed(1, 1);
}

TEST_F(PluggedPrinters, areFreeAgainThoughAPageWasOpenWhenTheyWereUnplugged) {
    const uint8_t data = 0;
    const uint32_t length = 1;
    // What the page's owner does then: nothing at all, what it always did, or a new page.
    const std::function<void()> endings[] = {
        [] {},
        [&] {
            zprusb_write(&data, &length, nullptr);
            EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        },
        [] {
            EXPECT_EQ(zprusb_selectPrinter(0, nullptr), 0u);
            EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
            EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_PRINTER_BUSY);
            EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        },
    };
    for (size_t round = 0; round < 2 * std::size(endings); ++round) {
        zprusb_selectPrinter(0, nullptr);
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        const bool isNoticed = round % 2 != 0;
        isNoticed ? unplug(0, round / 2 + 1) : bus[0].unplug();
        bus[0].plugIn();
        std::jthread([] { EXPECT_EQ(listPrinters(), (Bytes{0, 1})); }).join();
        endings[round / 2]();
        EXPECT_EQ(zprusb_selectPrinter(0, nullptr), 0u);
        EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS) << round;
    }
}

TEST_F(PluggedPrinters, areFreeAfterTheLastCloseThoughAnotherThreadWaitsForOneThatHasAPage) {
    Latch started(1), reopened(1), called(1), done(1);
    std::jthread owner([&] {
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        started.countDown();
        reopened.wait();
        EXPECT_EQ(codeOf(zprusb_copies, uint16_t{1}), ZPRUSB_SUCCESS);  // any call; one system needs it
        called.countDown();
        done.wait();
    });
    started.wait();
    std::jthread waiting([] {
        uint8_t answer[ZPRUSB_MAINTENANCE_READ_SIZE];
        EXPECT_EQ(zprusb_readRaw(answer, nullptr), 0u);
    });
    platform::sleepMilliseconds(50);
    zprusb_close();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    waiting.join();
    reopened.countDown();
    called.wait();
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    done.countDown();
}

TEST_F(PluggedPrinters, areReleasedByEndingThePageOnTwoThreadsAtOnceThoughTheyAreGone) {
    std::atomic<int> turn = 0;  // odd while the other thread ends the page
    std::jthread other([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            if (turn % 2 == 0) continue;  // without a pause: both shall be within the same microsecond
            for (int i = 0; i < 100; ++i) zprusb_endpage(nullptr);
            ++turn;
        }
    });
    for (int round = 0; round < 800 && !HasFailure(); ++round) {
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        (*api::ObjectUse(0)).deviceIndex = device::noDeviceIndex;  // as when it is unplugged
        ++turn;
        zprusb_endpage(nullptr);
        while (turn % 2 != 0) std::this_thread::yield();
        EXPECT_EQ(zprusb_selectPrinter(0, nullptr), 0u);
        EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS) << round;
    }
}

TEST_F(PluggedPrinters, areClosedByTheLastCloseHoweverManyThereWere) {
    unplug(0);
    zprusb_close();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);  // only one is there, so that is as far as searches look
    bus[0].plugIn();
    EXPECT_EQ(listPrinters(), Bytes{0});
    for (int round = 0; round < 2; ++round) {
        zprusb_close();
        EXPECT_EQ(bus.countCalls("Open 1"), bus.countCalls("Close 1"));
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(listPrinters(), (Bytes{0, 1}));
    }
    for (FakeDevice* device : {&bus[0], &bus[1]}) device->unplug();
    zprusb_close();
    EXPECT_EQ(zprusb_MakeObject(1), 0u);
    bus[1].plugIn();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS) << "after a search that found nothing";
}

TEST_F(PluggedPrinters, doNotKeepTheLibraryFromClosingWhenTheyHaveJustChanged) {
    for (int round = 0; round < 20; ++round) {
        control::notifyDeviceChange();
        platform::sleepMilliseconds(static_cast<uint32_t>(round) * 10);
        const auto start = std::chrono::steady_clock::now();
        zprusb_close();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    }
}
