/// The media sizes that a printer reports.
#pragma once

#include "device/printer_object.h"
#include "protocol/answer.h"

namespace protocol {

struct MediaEntry {
    uint8_t mediaCode;
    uint32_t width;
    uint32_t length;
    uint32_t longestLength;
    uint32_t sectionWidth;
    std::array<uint32_t, device::sectionCount> sectionLengths;
};

/// A count byte, then entries of 30 bytes, as the printer sent them but for the last byte of each, which is 0.
class MediaTable {
public:
    MediaTable() = default;

    /// Takes the entries that arrived whole, at most 8, and counts those.
    explicit MediaTable(const Payload& payload);

    uint32_t count() const { return bytes_[0]; }
    MediaEntry entry(uint32_t index) const;
    const uint8_t* bytes() const { return bytes_.data(); }

    static constexpr uint32_t capacity = 260;

private:
    std::array<uint8_t, capacity> bytes_{};
};

}  // namespace protocol
