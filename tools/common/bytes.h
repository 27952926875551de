/// Reading the fields of byte records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tool {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// An unsigned little-endian number of all the bytes of the field.
uint32_t littleEndian(ByteView field);

/// A number as so many bytes, little-endian.
Bytes littleEndianBytes(uint32_t value, size_t size);

/// The bytes up to the first zero, without blanks at the end, made harmless().
std::string textOf(ByteView field);

/// Two hexadecimal digits for each byte, with `separator` between the bytes.
std::string hexOf(ByteView bytes, const char* separator);

}  // namespace tool
