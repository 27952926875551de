/// The operations that send commands and hand out little or nothing, as a table.
#pragma once

#include "fake_pipe.h"

struct Operation {
    const char* name;
    uint32_t (*call)(uint16_t* code);
    bool reserves;
    std::vector<Bytes> pieces;  // all that is sent while the printer answers
    uint16_t refusedCode;       // after error 1 in answer to any piece
    unsigned attempts = 1;
};

extern const std::vector<Operation> operations;
