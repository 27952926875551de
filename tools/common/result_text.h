/// Result codes in words.
#pragma once

#include <cstdint>
#include <string>

namespace tool {

struct ResultText {
    uint16_t code;
    const char* name;
    const char* meaning;
    const char* remedy;
};

/// @return the entry of the public header's table; null for a number that isn't in it.
const ResultText* findResultText(uint16_t code);

/// The code's meaning; for an unknown one, words that say so.
std::string resultMeaning(uint16_t code);

/// Code, meaning and remedy, to be printed after what was attempted.
std::string resultSentence(uint16_t code);

}  // namespace tool
