#include "call.h"

#include <zprusb.h>

#include "failure.h"
#include "result_text.h"

namespace tool {

void call(const ServiceCall& function) {
    const uint16_t code = codeOf(function);
    if (code != ZPRUSB_SUCCESS) throw Refusal(resultSentence(code), code);
}

uint16_t codeOf(const ServiceCall& function) {
    uint16_t code = ZPRUSB_SUCCESS;
    const bool done = function(&code) == 1;
    return done || code != ZPRUSB_SUCCESS ? code : uint16_t{ZPRUSB_COMMUNICATION};
}

}  // namespace tool
