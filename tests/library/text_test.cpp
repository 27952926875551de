#include <gtest/gtest.h>
#include <zprusb_text.h>

#include <map>
#include <string>

namespace {

using Texts = std::map<uint16_t, std::string>;

#define MEANING_OF(number, name, meaning, cause, remedy) {number, meaning},
const Texts meanings = {ZPRUSB_RESULT_CODES(MEANING_OF)};
#define CONTENT_OF(tag, name, size, content) {tag, content},
const Texts contents = {ZPRUSB_INFO_TAGS(CONTENT_OF)}, settings = {ZPRUSB_SETTING_TAGS(CONTENT_OF)};

std::string textOf(const Texts& texts, uint16_t number, const char* unknown) {
    const auto text = texts.find(number);
    return text != texts.end() ? text->second : unknown;
}

}  // namespace

TEST(Texts, areThereForEachNumberOfTheTablesAndAnyOtherIsCalledUnknown) {
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        const auto number = static_cast<uint16_t>(n);
        EXPECT_EQ(zprusb_resultMeaning(number), textOf(meanings, number, "This code is unknown."));
        EXPECT_EQ(zprusb_infoContent(number), textOf(contents, number, "unknown information"));
        EXPECT_EQ(zprusb_settingContent(number), textOf(settings, number, "an unknown setting"));
        EXPECT_EQ(zprusb_resultName(number) == std::string("UNKNOWN"), !meanings.contains(number));
    }
    EXPECT_STREQ(zprusb_resultName(1500), "PRINTER_BUSY");
    EXPECT_STREQ(zprusb_resultRemedy(1500), "Wait until its page has ended and try again.");
    EXPECT_STREQ(zprusb_resultCause(1502), "A thread has not called zprusb_close.");
}
