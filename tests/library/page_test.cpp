#include <algorithm>
#include <atomic>

#include "calls.h"
#include "open_printer.h"

namespace {

const Bytes statusRequest{0x01, 0x00, 0, 0};

/// On a printer whose media size has been chosen.
struct Pages : OpenPrinters<3> {
    Pages() { chooseMedia(0); }

    void chooseMedia(uint8_t printer) {
        const Media media{0xF1, 15240, 10160, 0, 0x00012345, {0x1111, 0x2222, 0x3333, 0x4444, 0x5555}};
        bus[printer].answer(getMediaInfo, normalAnswer(mediaPayload({media})));
        EXPECT_EQ(zprusb_selectPrinter(printer, nullptr), printer);
        EXPECT_EQ(codeOf(zprusb_checkMediaInfo, uint8_t{0xF1}, 15240u, 10160u), ZPRUSB_SUCCESS);
        bus[printer].forgetPieces();
    }

    bool isFree() { return codeElsewhere(zprusb_status) != ZPRUSB_PRINTER_BUSY; }
};

/// The request of a page of 152.40 by 101.60 mm with the settings after opening.
Bytes printRequest(uint8_t job, uint16_t copies) {
    const auto low = static_cast<uint8_t>(copies), high = static_cast<uint8_t>(copies >> 8);
    return {0x01, 0x40, 14, 0, job, low, high, 0x88, 0x3B, 0xB0, 0x27, 0xF1, 1, 0, 200, 0, 200, 0};
}

}  // namespace

TEST_F(Pages, ofGreatLengthNameTheirSectionAndItsSize) {
    for (uint8_t section = 0; section <= 5; ++section) {
        const auto part = static_cast<uint8_t>(0x11 * section);
        Bytes request{0x02, 0x40, 19, 0, 8,    0x02, 0x03, section, 0x45, 0x23, 0x01, 0,
                      part, part, 0,  0, 0xF1, 1,    0,    200,     0,    200,  0};
        if (section == 0) std::ranges::copy(Bytes{0x88, 0x3B, 0, 0, 0xB0, 0x27}, request.begin() + 8);
        uint16_t pageId = 0;
        EXPECT_EQ(codeOf(zprusb_copies, uint16_t{0x0302}), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf(zprusb_startpagelong, &pageId, section), ZPRUSB_SUCCESS);
        EXPECT_EQ(pageId, 8);
        EXPECT_EQ(bus[0].pieces().back(), request);
        EXPECT_EQ(isFree(), section != 0);
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
    }
    bus[0].forgetPieces();
    for (const uint8_t section : Bytes{6, 255}) {
        uint16_t pageId = 99;
        EXPECT_EQ(codeOf(zprusb_startpagelong, &pageId, section), ZPRUSB_BAD_ARGUMENT);
        EXPECT_EQ(pageId, 0);
    }
    EXPECT_TRUE(bus[0].pieces().empty());
}

TEST_F(Pages, ofGreatLengthEndWithASectionThatFails) {
    bus[0].answerOnce(printLong, normalAnswer({}));
    bus[0].answer(printLong, errorAnswer(0x31));
    EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, uint8_t{0}), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, uint8_t{1}), ZPRUSB_CONDITION_2101);
    EXPECT_TRUE(isFree());
}

TEST_F(Pages, ofGreatLengthKeepTheirPrinterWhenASectionFailsOnAnotherOne) {
    bus[1].answer(printLong, errorAnswer(0x31));
    EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, uint8_t{0}), ZPRUSB_SUCCESS);
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, uint8_t{1}), ZPRUSB_CONDITION_2101);
    EXPECT_EQ(zprusb_selectPrinter(0, nullptr), 0u);
    EXPECT_FALSE(isFree());
}

TEST_F(Pages, areNotHeldUpByOtherThreadsThatWaitForTheirPrinter) {
    const uint8_t data = 0;
    const uint32_t length = 1;
    const uint8_t list[] = {1, 0, ZPRUSB_LIST_END};
    uint16_t codes[2] = {};
    // The other thread works with the same object, so nothing of that may change while it waits.
    const std::function<uint16_t()> waits[] = {[] { return codeOf(zprusb_status); },
                                               [&] {
                                                   zprusb_statusAll(list, codes);
                                                   return codes[1];
                                               }};
    for (const auto& wait : waits) {
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        bus[0].forgetPieces();
        std::atomic<uint16_t> code = 0xABCD;
        std::jthread other([&] { code = wait(); });
        platform::sleepMilliseconds(150);
        EXPECT_EQ(selectedPrinter(), 0u);
        EXPECT_EQ(codeOf(zprusb_write, &data, &length), ZPRUSB_SUCCESS);
        EXPECT_EQ(bus[0].pieces(1).front(), Bytes{0});
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        other.join();
        EXPECT_EQ(code, ZPRUSB_SUCCESS);
    }
}

TEST_F(Pages, startWithFourLooksAtTheStatusAndTheJobNumberAfterThePrintersLastOne) {
    const uint8_t numbers[][3] = {{0, 7, 8}, {0, 0, 1}, {0, 254, 255}, {0, 255, 1}, {2, 7, 8}, {2, 255, 1}};
    for (const auto& [printer, last, next] : numbers) {
        chooseMedia(printer);
        bus[printer].answer(getStatus, normalAnswer(statusPayload(last)));
        uint16_t pageId = 0;
        EXPECT_EQ(codeOf(zprusb_startpage, &pageId), ZPRUSB_SUCCESS);
        EXPECT_EQ(pageId, printer * 256 + next);
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        std::vector<Bytes> expected(4, statusRequest);
        expected.push_back(printRequest(next, 1));
        EXPECT_EQ(bus[printer].pieces(), expected);
    }
}

TEST_F(Pages, haveOneTo999CopiesUntilTheyEnd) {
    const uint16_t copies[][2] = {{999, 0}, {0, 1006}, {1000, 1006}, {65535, 1006}};
    for (const auto& [count, code] : copies) EXPECT_EQ(codeOf(zprusb_copies, count), code) << count;
    EXPECT_TRUE(bus[0].pieces().empty());
    for (const uint16_t count : std::initializer_list<uint16_t>{999, 1}) {
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        EXPECT_EQ(bus[0].pieces().back(), printRequest(8, count));
    }
}

TEST_F(Pages, doNotStartWhileTheStatusAsksToWait) {
    bus[0].answer(getStatus, normalAnswer(statusPayload(7, 1)));
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_CONDITION_2100);
    EXPECT_EQ(bus[0].pieces(), std::vector<Bytes>(4 * 4, statusRequest));
    EXPECT_TRUE(isFree());
}

TEST_F(Pages, leaveThePrinterFreeWhicheverStepOfTheirStartFails) {
    // A failure of the second request does not stop a start by itself.
    const std::pair<size_t, uint16_t> steps[] = {{1, 2101}, {3, 2600}, {4, 2101}, {5, 2101}};
    for (const auto& [step, code] : steps) {
        std::atomic<size_t> requests = 0;
        const auto failing = [&, failingStep = step](const Bytes& good) {
            return [&, good, failingStep](const Bytes&) {
                return ++requests % failingStep == 0 ? errorAnswer(0x31) : good;
            };
        };
        bus[0].answer(getStatus, failing(normalAnswer(statusPayload())));
        bus[0].answer(print, failing(normalAnswer({})));
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), code) << step;
        EXPECT_EQ(requests, 4 * step);
        bus[0].answer(getStatus, normalAnswer(statusPayload()));
        EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS) << step;
    }
}

TEST_F(Pages, areWrittenInPiecesOfAtMost4096Bytes) {
    const Bytes data = countingBytes(12294, 1);
    for (const uint32_t length : {1u, 4096u, 4097u, 12294u}) {
        std::vector<Bytes> expected;
        for (uint32_t offset = 0; offset < length; offset += 4096)
            expected.emplace_back(data.begin() + offset, data.begin() + std::min(offset + 4096, length));
        bus[0].forgetPieces();
        EXPECT_EQ(codeOf(zprusb_write, data.data(), &length), ZPRUSB_SUCCESS);
        EXPECT_EQ(bus[0].pieces(expected.size()), expected);
    }
    const uint32_t none = 0;
    uint16_t code = 0xABCD;
    EXPECT_EQ(zprusb_write(data.data(), &none, &code), 0u);
    EXPECT_EQ(code, 0xABCD);
}

TEST_F(Pages, onTwoPrintersEndWithThePrinterThatIsSelected) {
    for (const uint8_t printer : Bytes{0, 1}) {
        chooseMedia(printer);
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
    }
    for (const uint8_t printer : Bytes{0, 1}) {
        EXPECT_EQ(zprusb_selectPrinter(printer, nullptr), printer);
        EXPECT_FALSE(isFree());
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        EXPECT_TRUE(isFree());
    }
}

TEST_F(Pages, endWithACommunicationFailureWhenThePrinterVanishes) {
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
    std::jthread unplugging([&] {
        bus[0].pieces(20);
        bus[0].unplug();
    });
    const Bytes data(100'000);
    const uint32_t length = 100'000;
    uint16_t code = 0;
    while (zprusb_write(data.data(), &length, &code) == 1) EXPECT_EQ(code, ZPRUSB_SUCCESS);
    EXPECT_EQ(code, ZPRUSB_COMMUNICATION);
    unplugging.join();
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
}

TEST_F(Pages, thatAreStartedTwiceAreEndedTwiceByTheirOwnThread) {
    bus[0].answerOnce(print, errorAnswer(0x31));  // the attempt that fails leaves nothing to be ended
    for (int start = 0; start < 2; ++start) EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeElsewhere(zprusb_endpage), ZPRUSB_SUCCESS);
    for (const bool free : {false, true, true}) {
        EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
        EXPECT_EQ(isFree(), free);
    }
}
