#include <gtest/gtest.h>
#include <zprusb_text.h>

#include <array>
#include <map>
#include <string>

namespace {

using Words = std::array<std::string, 4>;

#define WORDS_OF(number, name, meaning, cause, remedy) {number, {#name, meaning, cause, remedy}},
const std::map<uint16_t, Words> results = {ZPRUSB_RESULT_CODES(WORDS_OF)};
#define CONTENT_OF(tag, name, size, content) {tag, content},
const std::map<uint16_t, std::string> contents = {ZPRUSB_INFO_TAGS(CONTENT_OF)};
const std::map<uint16_t, std::string> settings = {ZPRUSB_SETTING_TAGS(CONTENT_OF)};

template <class Text>
Text textOf(const std::map<uint16_t, Text>& texts, uint16_t number, const Text& unknown) {
    const auto text = texts.find(number);
    return text != texts.end() ? text->second : unknown;
}

Words wordsOf(uint16_t number) {
    const zprusb_words words = zprusb_resultWords(number);
    return {words.name, words.meaning, words.cause, words.remedy};
}

}  // namespace

TEST(Texts, areThereForEachNumberOfTheTablesAndAnyOtherIsCalledUnknown) {
    const Words unknown = wordsOf(9999);
    EXPECT_EQ(unknown[0], "UNKNOWN");
    for (unsigned n = 0; n <= 0xFFFF; ++n) {
        const auto number = static_cast<uint16_t>(n);
        EXPECT_EQ(wordsOf(number), textOf(results, number, unknown));
        EXPECT_EQ(zprusb_infoContent(number), textOf<std::string>(contents, number, "unknown information"));
        EXPECT_EQ(zprusb_settingContent(number), textOf<std::string>(settings, number, "an unknown setting"));
    }
    EXPECT_EQ(wordsOf(1500)[0], "PRINTER_BUSY");
}
