#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace tool {
namespace {

constexpr uint32_t noLetter = 0xFFFFFFFF;

struct Letter {
    uint32_t number;  // of Unicode
    size_t size;      // in bytes
};

/// @return noLetter and one byte when the text doesn't begin with a letter in UTF-8.
Letter firstLetter(std::string_view text) {
    constexpr Letter broken = {noLetter, 1};
    const auto byte = [text](size_t at) { return static_cast<uint8_t>(text[at]); };
    if (byte(0) < 0x80) return {byte(0), 1};
    const size_t size = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < size) return broken;
    uint32_t number = byte(0) & (0x7Fu >> size);
    for (size_t i = 1; i < size; ++i) {
        if (byte(i) >> 6 != 2) return broken;
        number = number << 6 | (byte(i) & 0x3F);
    }
    constexpr uint32_t smallest[] = {0x80, 0x800, 0x10000};
    const bool surrogate = number >= 0xD800 && number < 0xE000;
    return number < smallest[size - 2] || number > 0x10FFFF || surrogate ? broken : Letter{number, size};
}

/// Not the two ranges of control characters, line separators, the marks that turn the writing direction, and
/// letters without a width.
bool isHarmless(uint32_t number) {
    constexpr std::pair<uint32_t, uint32_t> harmful[] = {
        {0, 0x1F},        {0x7F, 0x9F},     {0xAD, 0xAD},     {0x061C, 0x061C}, {0x200B, 0x200F},
        {0x2028, 0x202E}, {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
    return number != noLetter && std::ranges::none_of(harmful, [number](const auto& range) {
               return number >= range.first && number <= range.second;
           });
}

}  // namespace

std::string decimal(double number) {
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 2).ptr;
    std::string text(digits, end);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text;
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string counted(size_t count, const char* one, const char* several) {
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string harmless(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const Letter letter = firstLetter(text);
        shown += isHarmless(letter.number) ? text.substr(0, letter.size) : "?";
        text.remove_prefix(letter.size);
    }
    return shown;
}

size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i + 1);
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t above = row[j + 1];
            row[j + 1] = std::min({above + 1, row[j] + 1, diagonal + (a[i] == b[j] ? 0u : 1u)});
            diagonal = above;
        }
    }
    return row.back();
}

}  // namespace tool
