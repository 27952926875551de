// Many of everything.
#include "campaign.h"
#include "support/system.h"

namespace {

struct Boundaries : Campaign {
    Boundaries() : Campaign(ZPRUSB_MAX_PRINTERS) {}
};

}  // namespace

TEST_F(Boundaries, allowAnyNumberOfOpeningsAndPagesOnAllPrinters) {
    const unsigned pages = rounds(300, 10000), openings = rounds(5, 1000);
    unsigned resources = 0;
    uint16_t code = 0;
    for (unsigned page = 0, opening = 0; opening < openings; ++opening) {
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(listPrinters().size(), size_t{ZPRUSB_MAX_PRINTERS});
        for (; page < (opening + 1) * pages / openings; ++page) {
            const auto printer = static_cast<uint8_t>(page % ZPRUSB_MAX_PRINTERS);
            EXPECT_EQ(zprusb_selectPrinter(printer, nullptr), printer);
            EXPECT_EQ(printPage(1, &code), 1u) << code;
        }
        zprusb_close();
        if (opening <= 1) resources = test::resourceCount();
        EXPECT_TRUE(resourcesFallTo(resources));
    }
}
