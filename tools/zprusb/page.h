/// Printing a page.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "bytes.h"
#include "media.h"

namespace tool {

struct Page {
    Sheet sheet;
    uint16_t copies;
    std::optional<uint8_t> section;  // of a long page
    Bytes pixels;                    // 8-bit RGB, row by row
};

/// Prints a page on the selected printer.
/// @param progress is told the number of bytes sent so far.
/// @return the page identifier: printer number x 256 + job number.
/// @throws Refusal
uint16_t printPage(const Page& page, const std::function<void(size_t)>& progress);

}  // namespace tool
