#pragma once

#include <cstdint>
#include <string>

namespace tool {

/// A result code in words, as zprusb_words has them.
struct ResultWords {
    std::string name;
    std::string meaning;
    std::string cause;
    std::string remedy;
};

ResultWords resultWords(uint16_t code);

/// From now on the codes that this file knows have its words. It is a JSON object with the code as each key:
/// {"2101": {"meaning": "The paper is at its end.", "remedy": "Put in a new roll."}}
/// @param path in UTF-8.
/// @throws UnusableFile
void replaceWords(const std::string& path);

/// Code, meaning and remedy, to be printed after what was attempted.
std::string resultSentence(uint16_t code);

}  // namespace tool
