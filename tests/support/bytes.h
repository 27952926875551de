#pragma once

#include <cstdint>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// Bytes that count up from `start`.
inline Bytes countingBytes(size_t count, uint8_t start) {
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(start + i);
    return bytes;
}
