#include <gtest/gtest.h>
#include <zprusb_text.h>

#include <set>
#include <string>

#define NUMBER_OF(number, ...) number,
const std::set<unsigned> results{ZPRUSB_RESULT_CODES(NUMBER_OF)}, contents{ZPRUSB_INFO_TAGS(NUMBER_OF)},
    settings{ZPRUSB_SETTING_TAGS(NUMBER_OF)};

TEST(Texts, areThereForEachNumberOfTheTablesAndAnyOtherIsCalledUnknown) {
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        const auto number = static_cast<uint16_t>(n);
        EXPECT_EQ(results.contains(n), zprusb_resultWords(number).name != std::string("UNKNOWN")) << n;
        EXPECT_EQ(contents.contains(n), zprusb_infoContent(number) != std::string("unknown information")) << n;
        EXPECT_EQ(settings.contains(n), zprusb_settingContent(number) != std::string("an unknown setting"))
            << n;
    }
    EXPECT_STREQ(zprusb_resultWords(ZPRUSB_PRINTER_BUSY).name, "PRINTER_BUSY");
}
