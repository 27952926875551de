#include "settings.h"

#include <zprusb.h>

#include <charconv>

namespace tool {
namespace {

template <uint32_t smallest, uint32_t largest, size_t size>
std::optional<Bytes> encodeNumber(const std::string& text) {
    uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < smallest || value > largest) return std::nullopt;
    return littleEndianBytes(value, size);
}

std::optional<Bytes> encodeName(const std::string& text) {
    if (text.empty() || text.size() > ZPRUSB_INFO_UNIQUE_STRING_SIZE) return std::nullopt;
    return Bytes(text.begin(), text.end());
}

constexpr Setting all[] = {
    {"button", ZPRUSB_SET_BUTTON, "1 or 2", encodeNumber<1, 2, 1>},
    {"parameter", ZPRUSB_SET_PARAMETER, "a number from 0 to 4294967295", encodeNumber<0, 0xFFFFFFFF, 4>},
    {"name", ZPRUSB_SET_UNIQUE_STRING, "a text of 1 to 23 bytes in UTF-8", encodeName},
};

}  // namespace

std::span<const Setting> settings() {
    return all;
}

}  // namespace tool
