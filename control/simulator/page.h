/// Page commands, and what becomes of their pages.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "commands.h"

namespace simulator {

/// What a page command says. Sizes are in 1/100 mm.
struct Page {
    uint8_t jobNumber = 0;
    uint32_t copies = 0;
    std::optional<uint8_t> section;  // of a long page; 0 is the whole print
    uint32_t width = 0;
    uint32_t length = 0;
    uint8_t mediaCode = 0;
    uint8_t option20 = 0;
    uint32_t option21 = 0;
    uint32_t option22 = 0;
};

/// Dots that a size comes to.
uint32_t pixelsOf(uint32_t hundredthsOfMillimetre);

/// Handlers of the two page commands.
Reply print(Printer& printer, ByteView payload);
Reply printLong(Printer& printer, ByteView payload);

}  // namespace simulator
