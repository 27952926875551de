/// The settings that a printer keeps, by the words of the command line.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "bytes.h"

namespace tool {

struct Setting {
    const char* word;
    uint16_t tag;                                              // of zprusb_setPrinterInfo()
    const char* range;                                         // of its values, in words
    std::optional<Bytes> (*encode)(const std::string& value);  // none when the value is outside the range
};

std::span<const Setting> settings();

}  // namespace tool
