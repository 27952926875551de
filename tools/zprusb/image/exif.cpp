#include "exif.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace tool {
namespace {

// How to turn the stored picture for the orientations 1 to 8.
constexpr std::array<Turn, 8> turns = {{
    {false, false, false},
    {false, true, false},
    {false, true, true},
    {false, false, true},
    {true, false, false},
    {true, true, false},
    {true, true, true},
    {true, false, true},
}};

constexpr uint8_t markerStart = 0xFF;
constexpr uint8_t startOfScan = 0xDA;
constexpr uint8_t application1 = 0xE1;
constexpr std::string_view exifSignature("Exif\0\0", 6);
constexpr uint32_t orientationTag = 0x0112;
constexpr size_t entrySize = 12;

/// Like subspan(), but empty where the bytes aren't there.
ByteView field(ByteView bytes, size_t offset, size_t size) {
    return offset <= bytes.size() && size <= bytes.size() - offset ? bytes.subspan(offset, size) : ByteView{};
}

bool startsWith(ByteView bytes, std::string_view text) {
    const ByteView start = field(bytes, 0, text.size());
    return std::ranges::equal(start, text, {}, {}, [](char c) { return static_cast<uint8_t>(c); });
}

/// The EXIF data of a JPEG file: what follows the signature in its segment.
ByteView exifData(ByteView file) {
    if (!startsWith(file, "\xFF\xD8")) return {};
    for (size_t at = 2;;) {
        const ByteView head = field(file, at, 4);
        if (head.empty() || head[0] != markerStart || head[1] == startOfScan) return {};
        const size_t length = size_t{head[2]} << 8 | head[3];  // counts its own two bytes
        if (length < 2) return {};
        const ByteView segment = field(file, at + 4, length - 2);
        if (head[1] == application1 && startsWith(segment, exifSignature))
            return segment.subspan(exifSignature.size());
        at += 2 + length;
    }
}

/// Numbers in the byte order that the data announce at their beginning.
class Numbers {
public:
    explicit Numbers(ByteView data) : data_(data), little_(startsWith(data, "II")) {}

    /// @return none past the end.
    std::optional<uint32_t> at(size_t offset, size_t size) const {
        const ByteView bytes = field(data_, offset, size);
        if (bytes.empty()) return std::nullopt;
        if (little_) return littleEndian(bytes);
        const Bytes reversed(bytes.rbegin(), bytes.rend());
        return littleEndian(reversed);
    }

private:
    ByteView data_;
    bool little_;
};

/// The value of the orientation entry in the first directory.
std::optional<uint32_t> orientation(ByteView exif) {
    const Numbers numbers(exif);
    const size_t directory = numbers.at(4, 4).value_or(0);
    const uint32_t count = numbers.at(directory, 2).value_or(0);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t entry = directory + 2 + i * entrySize;
        if (numbers.at(entry, 2) == orientationTag) return numbers.at(entry + 8, 2);
    }
    return std::nullopt;
}

}  // namespace

Turn turnOfExif(ByteView file) {
    const uint32_t value = orientation(exifData(file)).value_or(1);
    return value >= 1 && value <= turns.size() ? turns[value - 1] : turns[0];
}

}  // namespace tool
