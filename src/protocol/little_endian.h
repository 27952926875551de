#pragma once

#include <cstdint>

namespace protocol {

inline uint16_t wordAt(const uint8_t* bytes) {
    return static_cast<uint16_t>(bytes[0] + bytes[1] * 0x100u);
}

inline uint32_t doubleWordAt(const uint8_t* bytes) {
    return wordAt(bytes) + wordAt(bytes + 2) * 0x10000u;
}

}  // namespace protocol
