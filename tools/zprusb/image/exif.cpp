#include "exif.h"

#include <array>
#include <optional>

#include "fields.h"

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

constexpr uint32_t orientationTag = 0x0112;
constexpr size_t entrySize = 12;

/// Numbers in the byte order that the data announce at their beginning.
class Numbers {
public:
    explicit Numbers(ByteView data) : data_(data), little_(startsWith(data, "II")) {}

    /// @return none past the end.
    std::optional<uint32_t> at(size_t offset, size_t size) const {
        const ByteView bytes = field(data_, offset, size);
        if (bytes.empty()) return std::nullopt;
        if (!little_) return bigEndian(bytes);
        const Bytes reversed(bytes.rbegin(), bytes.rend());
        return bigEndian(reversed);
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

Turn turnOfExif(ByteView exif) {
    const uint32_t value = orientation(exif).value_or(1);
    return value >= 1 && value <= turns.size() ? turns[value - 1] : turns[0];
}

}  // namespace tool
