/// What the library has to know of each printer model. Another model is another row.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <zprusb.h>

namespace device {

/// Which lengths of a media entry are possible, by its media code. Lengths as in the printer's media table.
struct MediaRules {
    uint8_t firstExactCode, lastExactCode;          // the entry's own length and no other
    uint8_t firstDefaultedCode, lastDefaultedCode;  // up to the default when the entry has no longest length
    uint32_t shortestLength;                        // of all that are not exact
    uint32_t defaultLongestLength;
};

struct Model {
    std::string_view vendorDigits, productDigits;  // in the device's interface path
    uint8_t readPipe, writePipe;                   // the numbers of its pipes
    MediaRules media;
};

inline constexpr std::array models{
    Model{"5a2c",
          "0012",
          1,
          0,
          {ZPRUSB_FIRST_EXACT_CODE, ZPRUSB_LAST_EXACT_CODE, ZPRUSB_FIRST_DEFAULTED_CODE,
           ZPRUSB_LAST_DEFAULTED_CODE, ZPRUSB_SHORTEST_VARIABLE_LENGTH, ZPRUSB_DEFAULT_LONGEST_LENGTH}},
};

}  // namespace device
