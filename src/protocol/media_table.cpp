#include "protocol/media_table.h"

#include <algorithm>

#include "protocol/little_endian.h"

namespace protocol {

namespace {

constexpr uint32_t entryLength = ZPRUSB_MEDIA_ENTRY_SIZE;
constexpr uint32_t firstEntry = 1;  // behind the count byte
constexpr uint32_t maxEntries = (MediaTable::capacity - firstEntry) / entryLength;

/// Offsets in an entry. The two bytes at 9 and 10 are the printer's own.
constexpr uint32_t mediaCodeOffset = 0;
constexpr uint32_t widthOffset = 1;
constexpr uint32_t lengthOffset = 5;
constexpr uint32_t longestLengthOffset = 11;
constexpr uint32_t sectionWidthOffset = 15;
constexpr uint32_t sectionLengthsOffset = 19;
constexpr uint32_t unreadOffset = 29;

uint32_t startOf(uint32_t index) {
    return firstEntry + entryLength * index;
}

}  // namespace

MediaTable::MediaTable(const Payload& payload) {
    const uint32_t whole = payload.count < firstEntry ? 0 : (payload.count - firstEntry) / entryLength;
    const uint32_t entries = std::min({uint32_t{payload.bytes[0]}, whole, maxEntries});
    bytes_[0] = static_cast<uint8_t>(entries);
    std::copy_n(payload.bytes.begin() + firstEntry, entries * entryLength, bytes_.begin() + firstEntry);
    for (uint32_t index = 0; index < entries; ++index) bytes_[startOf(index) + unreadOffset] = 0;
}

MediaEntry MediaTable::entry(uint32_t index) const {
    const uint8_t* bytes = bytes_.data() + startOf(index);
    MediaEntry entry{};
    entry.mediaCode = bytes[mediaCodeOffset];
    entry.width = doubleWordAt(bytes + widthOffset);
    entry.length = doubleWordAt(bytes + lengthOffset);
    entry.longestLength = doubleWordAt(bytes + longestLengthOffset);
    entry.sectionWidth = doubleWordAt(bytes + sectionWidthOffset);
    for (uint32_t section = 0; section < device::sectionCount; ++section) {
        entry.sectionLengths[section] = wordAt(bytes + sectionLengthsOffset + 2 * section);
    }
    return entry;
}

}  // namespace protocol
