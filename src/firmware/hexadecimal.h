/// Hexadecimal text, two characters for each byte. A character that is no digit counts as 0.
#pragma once

#include <array>
#include <cstdint>

namespace firmware {

/// Without a branch, so that the compiler decodes many characters at once.
constexpr uint8_t digitValue(uint8_t character) {
    const auto decimal = static_cast<uint8_t>(character - '0');
    const auto letter = static_cast<uint8_t>((character | 0x20) - 'a');
    const auto ofLetter = static_cast<uint8_t>(letter < 6 ? letter + 10 : 0);
    return decimal < 10 ? decimal : ofLetter;
}

constexpr std::array<uint8_t, 256> makeDigitValues() {
    std::array<uint8_t, 256> values{};
    for (unsigned character = 0; character < values.size(); ++character)
        values[character] = digitValue(static_cast<uint8_t>(character));
    return values;
}
inline constexpr auto digitValues = makeDigitValues();

/// One byte, through a table.
inline uint8_t decodeByte(const uint8_t* characters) {
    return static_cast<uint8_t>(digitValues[characters[0]] << 4 | digitValues[characters[1]]);
}

/// Long texts are decoded in blocks of this many bytes, which may run over the end of the text.
constexpr uint32_t decodedBlock = 16;

constexpr uint32_t roundUpToBlocks(uint32_t bytes) {
    return (bytes + decodedBlock - 1) / decodedBlock * decodedBlock;
}

/// @param characters readable to the end of the last block.
/// @param bytes room for whole blocks.
inline void decodeBlocks(const uint8_t* characters, uint8_t* bytes, uint32_t count) {
    for (uint32_t block = 0; block < count; block += decodedBlock) {
        for (uint32_t i = block; i < block + decodedBlock; ++i) {
            const uint8_t high = digitValue(characters[2 * i]), low = digitValue(characters[2 * i + 1]);
            bytes[i] = static_cast<uint8_t>(high << 4 | low);
        }
    }
}

}  // namespace firmware
