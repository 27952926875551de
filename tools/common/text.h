/// Small formatting for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tool {

/// A number with at most two decimals, without zeros at the end: 6, 10.5, 101.6.
std::string decimal(double number);

/// The text with blanks behind it up to `width` characters.
std::string padded(std::string text, size_t width);

/// A text that came from elsewhere, such as a printer's name, as it may be shown on a terminal: valid UTF-8,
/// with a question mark for everything that could move the cursor, turn the writing direction or hide itself.
std::string harmless(std::string_view text);

/// How many letters differ at least when one word is typed for the other.
size_t distance(std::string_view a, std::string_view b);

/// "1 copy", "2 copies".
std::string counted(size_t count, const char* one, const char* several);

}  // namespace tool
