#include "result_text.h"

#include <zprusb.h>

#include <algorithm>
#include <iterator>

namespace tool {
namespace {

#define ZPRUSB_RESULT_TEXT(number, name, meaning, remedy) {number, #name, meaning, remedy},
constexpr ResultText resultTexts[] = {ZPRUSB_RESULT_CODES(ZPRUSB_RESULT_TEXT)};
#undef ZPRUSB_RESULT_TEXT

}  // namespace

const ResultText* findResultText(uint16_t code) {
    const auto found = std::ranges::find(resultTexts, code, &ResultText::code);
    return found == std::end(resultTexts) ? nullptr : found;
}

std::string resultMeaning(uint16_t code) {
    const ResultText* text = findResultText(code);
    return text ? text->meaning : "This code is unknown.";
}

std::string resultSentence(uint16_t code) {
    const ResultText* text = findResultText(code);
    return "code " + std::to_string(code) + ": " + resultMeaning(code) +
           (text ? std::string(" ") + text->remedy : "");
}

}  // namespace tool
