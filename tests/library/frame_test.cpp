#include <atomic>
#include <future>

#include "calls.h"
#include "open_printer.h"
#include "operations.h"
#include "support/latch.h"

namespace {

/// The entry points that act on the calling thread's object as well, but do not just send a command.
const std::vector<Operation> otherOperations{
    {CALL(zprusb_copies(1, code))},
    {CALL(zprusb_startpage(nullptr, code))},
    {CALL(zprusb_startpagelong(nullptr, 0, code))},
    {CALL(zprusb_endpage(code))},
    {CALL(zprusb_cmdReserved(1, code))},
};

void expectNoObject() {
    for (const auto& table : {operations, otherOperations}) {
        for (const Operation& operation : table) {
            EXPECT_EQ(codeOf(operation.call), ZPRUSB_NO_OBJECT) << operation.name;
            EXPECT_EQ(operation.call(nullptr), 0u) << operation.name;
        }
    }
}

struct ThreePrinters : OpenPrinters<3> {};

}  // namespace

TEST(EntryPoints, giveNoObjectBeforeOpening) {
    FakeBus bus;
    expectNoObject();
    uint8_t buffer[16] = {0x5A};
    uint32_t length = 16;
    EXPECT_EQ(zprusb_getPrinterInfo(ZPRUSB_INFO_STATUS_BYTES, buffer, &length), 0u);
    EXPECT_EQ(buffer[0], 0x5A);
    EXPECT_EQ(length, 16u);
    for (const size_t listed : {0, 3, 128, 200}) {
        Bytes list(200, 7);
        if (listed < 200) list[listed] = ZPRUSB_LIST_END;
        std::vector<uint16_t> codes(200, 0xABCD), expected(200, 0xABCD);
        std::fill_n(expected.begin(), std::min<size_t>(listed, 128), ZPRUSB_NO_OBJECT);
        EXPECT_EQ(zprusb_statusAll(list.data(), codes.data()), 0u);
        EXPECT_EQ(codes, expected);
    }
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
    EXPECT_TRUE(bus.calls().empty());
}

TEST(EntryPoints, selectAndListNothingBeforeOpening) {
    FakeBus bus;
    uint16_t numberCode = 0, labelCode = 0, idCode = 0;
    EXPECT_EQ(zprusb_selectPrinter(0, &numberCode), 255u);
    EXPECT_EQ(zprusb_selectPrinterLbl(nullptr, &labelCode), nullptr);
    EXPECT_EQ(zprusb_selectPrinterId(0, &idCode), nullptr);
    for (const uint16_t code : {numberCode, labelCode, idCode}) EXPECT_EQ(code, ZPRUSB_NO_OBJECT);
    EXPECT_EQ(listPrinters(), Bytes{});
    EXPECT_EQ(listLabels(), std::pair(0u, std::string(2944, '\0')));
    EXPECT_EQ(listIds(), std::pair(0u, Bytes(1024, 0xFF)));
    EXPECT_EQ(objectCounts(), std::pair(1, 1));  // a selection binds its thread
    zprusb_close();
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
}

TEST(Threads, areBoundToAsManyObjectsAsThereAreAndNoFurtherOne) {
    FakeBus bus(3);
    ASSERT_EQ(zprusb_MakeObject(100), 1u);
    Latch selected{100}, checked{100}, leave{1};
    std::vector<std::jthread> threads;
    for (uint8_t thread = 0; thread < 100; ++thread) {
        threads.emplace_back([&, number = static_cast<uint8_t>(thread % 3)] {
            EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
            EXPECT_EQ(zprusb_selectPrinter(number, nullptr), number);
            selected.countDown();
            selected.wait();
            EXPECT_EQ(selectedPrinter(), number);
            EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
            checked.countDown();
            leave.wait();
            zprusb_close();
        });
    }
    checked.wait();
    EXPECT_EQ(objectCounts(), std::pair(100, 100));
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_NO_OBJECT);
    expectNoObject();
    leave.countDown();
    threads.clear();
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
}

TEST_F(ThreePrinters, shareTheOnlyObjectAmongAllThreads) {
    EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS);
    std::jthread([] {
        EXPECT_EQ(zprusb_selectPrinter(2, nullptr), 2u);
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        zprusb_close();
    }).join();
    EXPECT_EQ(objectCounts(), std::pair(1, 1));
    EXPECT_EQ(selectedPrinter(), 2u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
}

TEST_F(ThreePrinters, haveCopiesSetAndPagesEndedWhileAnotherThreadWaitsForAnAnswer) {
    std::promise<void> answer;
    bus[0].answer(getStatus, [&](const Bytes&) {
        answer.get_future().wait();
        return normalAnswer(statusPayload());
    });
    auto status = std::async(std::launch::async, [] { return codeOf(zprusb_status); });
    EXPECT_EQ(bus[0].pieces(1).size(), 1u);
    EXPECT_EQ(codeOf(zprusb_copies, uint16_t{5}), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
    EXPECT_EQ(status.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    answer.set_value();
    EXPECT_EQ(status.get(), ZPRUSB_SUCCESS);
}

TEST(Threads, mayEndPagesOnObjectsThatAreBeingReleased) {
    FakeBus bus;
    std::atomic<bool> stop = false;
    std::atomic<unsigned> served = 0;
    const auto call = [&] {
        while (!stop) {
            for (const uint16_t code : {codeOf(zprusb_copies, uint16_t{2}), codeOf(zprusb_endpage)}) {
                EXPECT_TRUE(code == ZPRUSB_SUCCESS || code == ZPRUSB_NO_OBJECT) << code;
                served += code == ZPRUSB_SUCCESS;
            }
        }
    };
    std::jthread first(call), second(call);
    for (int round = 0; round < 10; ++round) {
        EXPECT_EQ(zprusb_MakeObject(1), 1u);
        EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_SUCCESS);
    }
    stop = true;
    EXPECT_GT(served, 0u);
}
