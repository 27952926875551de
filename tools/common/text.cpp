#include "text.h"

#include <algorithm>
#include <charconv>

namespace tool {

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

}  // namespace tool
