#include "bytes.h"

#include <algorithm>

#include "text.h"

namespace tool {

uint32_t littleEndian(ByteView field) {
    uint32_t value = 0;
    for (size_t i = field.size(); i-- > 0;) value = value << 8 | field[i];
    return value;
}

Bytes littleEndianBytes(uint32_t value, size_t size) {
    Bytes bytes;
    for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
    return bytes;
}

std::string textOf(ByteView field) {
    std::string text(field.begin(), std::ranges::find(field, uint8_t{0}));
    text.erase(text.find_last_not_of(' ') + 1);
    return harmless(text);
}

std::string hexOf(ByteView bytes, const char* separator) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty()) text += separator;
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace tool
