/// Fields of a picture file.
#pragma once

#include <algorithm>
#include <string_view>

#include "bytes.h"

namespace tool {

/// Like subspan(), but empty where the bytes aren't there.
inline ByteView field(ByteView bytes, size_t offset, size_t size) {
    return offset <= bytes.size() && size <= bytes.size() - offset ? bytes.subspan(offset, size) : ByteView{};
}

inline bool startsWith(ByteView bytes, std::string_view text) {
    const ByteView start = field(bytes, 0, text.size());
    return std::ranges::equal(start, text, {}, {}, [](char c) { return static_cast<uint8_t>(c); });
}

/// An unsigned number of all the bytes, up to four.
inline uint32_t bigEndian(ByteView bytes) {
    uint32_t value = 0;
    for (const uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

}  // namespace tool
