#include "result_text.h"

#include <zprusb_text.h>

namespace tool {

std::string resultSentence(uint16_t code) {
    const zprusb_words words = zprusb_resultWords(code);
    return "code " + std::to_string(code) + ": " + words.meaning + " " + words.remedy;
}

}  // namespace tool
