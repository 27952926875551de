#include "call.h"

#include <zprusb.h>

#include "failure.h"
#include "patience.h"
#include "result_text.h"

namespace tool {

uint16_t codeOf(const std::string& text, const ServiceCall& function) {
    uint16_t code = ZPRUSB_SUCCESS;
    const bool done = callLibrary(forAnswers, text, code, function) == 1;
    return done || code != ZPRUSB_SUCCESS ? code : uint16_t{ZPRUSB_COMMUNICATION};
}

void call(const std::string& text, const ServiceCall& function) {
    const uint16_t code = codeOf(text, function);
    if (code != ZPRUSB_SUCCESS) throw Refusal(resultSentence(code), code);
}

std::string argumentText(const uint8_t*) {
    return "data";
}

std::string argumentText(uint8_t*) {
    return "out";
}

std::string argumentText(const uint32_t* length) {
    return "&" + std::to_string(*length);
}

}  // namespace tool
