#pragma once

#include <cstdint>
#include <cstring>

namespace firmware {

/// The sum of bytes modulo 2^32, eight at a time: each word adds its bytes to four sums of 16 bits.
inline uint32_t sumOfBytes(const uint8_t* bytes, uint32_t count) {
    constexpr uint32_t wordSize = sizeof(uint64_t);
    constexpr uint64_t everyOtherByte = 0x00FF00FF00FF00FF, addLanes = 0x0001000100010001;
    constexpr uint32_t wordsBeforeOverflow = 32;  // 32 words of 8 x 255 still fit into 16 bits
    uint32_t sum = 0;
    while (count >= wordSize) {
        uint64_t lanes = 0;
        for (uint32_t word = 0; word < wordsBeforeOverflow && count >= wordSize; ++word) {
            uint64_t eight;
            std::memcpy(&eight, bytes, wordSize);
            lanes += (eight & everyOtherByte) + (eight >> 8 & everyOtherByte);
            bytes += wordSize;
            count -= wordSize;
        }
        sum += static_cast<uint32_t>(lanes * addLanes >> 48);
    }
    for (; count > 0; --count) sum += *bytes++;
    return sum;
}

}  // namespace firmware
