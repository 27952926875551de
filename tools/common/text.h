/// Small formatting for people.
#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// A number with at most two decimals, without zeros at the end: 6, 10.5, 101.6.
std::string decimal(double number);

/// The text with blanks behind it up to `width` characters.
std::string padded(std::string text, size_t width);

/// "1 copy", "2 copies".
std::string counted(size_t count, const char* one, const char* several);

}  // namespace tool
