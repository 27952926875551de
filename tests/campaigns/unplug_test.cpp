// The printer is unplugged before, during and after every step of a page.
#include <thread>
#include <vector>

#include "campaign.h"

namespace {

struct Unplugged : Campaign {
    /// Runs the steps of a page; each fails with 2000 or 2600 once the printer is gone.
    /// @param beforeStep called with the number of the step.
    /// @return how many steps there are.
    unsigned printStepByStep(auto beforeStep) {
        static const uint8_t pixels[pageSize / 2] = {};
        static const uint32_t half = sizeof pixels;
        const std::vector<uint16_t (*)()> steps{
            [] { return codeOf(zprusb_open); },
            [] { return codeOf(zprusb_status); },
            [] { return codeOf(zprusb_checkMediaInfo, uint8_t{0xF1}, 85u, 85u); },
            [] { return codeOf(zprusb_startpage, nullptr); },
            [] { return codeOf(zprusb_write, pixels, &half); },
            [] { return codeOf(zprusb_write, pixels, &half); },
            [] { return codeOf(zprusb_endpage); },
        };
        for (unsigned step = 0; step < steps.size(); ++step) {
            beforeStep(step);
            const uint16_t code = steps[step]();
            const bool isFine = code == ZPRUSB_SUCCESS;
            const bool isGone = code == ZPRUSB_NO_PRINTER || code == ZPRUSB_COMMUNICATION ||
                                code == ZPRUSB_NO_PRINTER_FOUND || code == ZPRUSB_NO_OBJECT;
            EXPECT_TRUE(isFine || isGone) << "code " << code << " in step " << step;
        }
        return static_cast<unsigned>(steps.size());
    }

    /// Plugged in and opened anew, it prints.
    static void expectRecovery() {
        zprusb_close();
        zprusbsim_plug(0);
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf([](uint16_t* code) { return printPage(1, code); }), ZPRUSB_SUCCESS);
        zprusb_close();
    }
};

}  // namespace

TEST_F(Unplugged, betweenAnyTwoStepsOfAPageItIsFoundAgain) {
    const unsigned steps = printStepByStep([](unsigned) {});
    for (unsigned unplugged = 0; unplugged < steps; ++unplugged) {
        SCOPED_TRACE(unplugged);
        zprusb_close();
        printStepByStep([=](unsigned step) {
            if (step == unplugged) zprusbsim_unplug(0);
        });
        expectRecovery();
    }
}

TEST_F(Unplugged, withinAnyExchangeOrTheDataOfAPageItIsFoundAgain) {
    unsigned requests = 0;
    printStepByStep([](unsigned) {});
    while (zprusbsim_takeRequest(0, nullptr, 0) != 0) ++requests;
    for (unsigned request = 1; request <= requests; ++request) {
        SCOPED_TRACE(request);
        zprusb_close();
        addFault({{"command", "any"}, {"occurrence", request}, {"action", "unplug"}});
        printStepByStep([](unsigned) {});
        zprusbsim_clearFaults(0);
        expectRecovery();
    }
    for (const uint32_t byte : {0u, 1u, pageSize / 2, pageSize - 1}) {
        SCOPED_TRACE(byte);
        addFault({{"imageByte", byte}, {"action", "unplug"}});
        printStepByStep([](unsigned) {});
        zprusbsim_clearFaults(0);
        expectRecovery();
    }
}

TEST(Unplugging, hidesNoPrinterFromTheSearchThatFollows) {
    const PageFolder folder;
    connectPrinters(2, folder.path);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    for (const int milliseconds : {0, 500}) {  // the latter for the library to notice
        for (const unsigned printer : {0, 1}) zprusbsim_unplug(printer);
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        for (const unsigned printer : {0, 1}) zprusbsim_plug(printer);
        EXPECT_EQ(listPrinters(), (std::vector<uint8_t>{0, 1})) << milliseconds;
    }
    zprusb_close();
}
