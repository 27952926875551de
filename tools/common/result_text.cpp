#include "result_text.h"

#include <zprusb_text.h>

namespace tool {

std::string resultSentence(uint16_t code) {
    return "code " + std::to_string(code) + ": " + zprusb_resultMeaning(code) + " " + zprusb_resultRemedy(code);
}

}  // namespace tool
