#pragma once

#include <cstdint>
#include <string>

namespace tool {

/// Code, meaning and remedy, to be printed after what was attempted.
std::string resultSentence(uint16_t code);

}  // namespace tool
