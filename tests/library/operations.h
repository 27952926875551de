/// The operations that send commands and hand out little or nothing, as a table.
#pragma once

#include "support/bytes.h"

struct Operation {
    const char* name;
    uint32_t (*call)(uint16_t* code);
    bool reserves = false;
    std::vector<Bytes> pieces{};  // all that is sent while the printer answers
    uint16_t refusedCode = 0;     // after error 1 in answer to any piece
    unsigned attempts = 1;
};

/// The first two members, of a call whose last argument is `code`.
#define CALL(text) #text, [](uint16_t * code) { return text; }

extern const std::vector<Operation> operations;
