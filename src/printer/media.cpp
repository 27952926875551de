#include "printer/media.h"

#include "device/reservation.h"
#include "protocol/exchange.h"

namespace printer {

namespace {

using protocol::MediaEntry;

struct MediaSize {
    uint8_t mediaCode;
    uint32_t width;
    uint32_t length;
};

/// Lengths as in the media table.
constexpr uint32_t shortestLength = 7112;
constexpr uint32_t defaultLongestLength = 25120;

bool isExactCode(uint8_t code) {
    return 0xF0 <= code && code <= 0xFE;
}
bool hasDefaultLongestLength(uint8_t code) {
    return 0xE0 <= code && code <= 0xEF;
}

bool matches(const MediaEntry& entry, const MediaSize& wanted) {
    if (entry.mediaCode != wanted.mediaCode || entry.width != wanted.width) return false;
    if (isExactCode(wanted.mediaCode)) return entry.length == wanted.length;
    uint32_t longestLength = entry.longestLength;
    if (longestLength == 0 && hasDefaultLongestLength(wanted.mediaCode)) longestLength = defaultLongestLength;
    return shortestLength <= wanted.length && wanted.length <= longestLength;
}

/// The first entry that matches wins.
std::optional<MediaEntry> findMedia(const protocol::MediaTable& table, const MediaSize& wanted) {
    for (uint32_t index = 0; index < table.count(); ++index) {
        const MediaEntry entry = table.entry(index);
        if (matches(entry, wanted)) return entry;
    }
    return std::nullopt;
}

}  // namespace

std::optional<protocol::MediaTable> readMediaTable(PrinterObject& printer, uint16_t* resultCode) {
    protocol::Payload payload;
    if (!protocol::query(printer, payload, resultCode, protocol::sendGetMediaInfo)) return std::nullopt;
    return protocol::MediaTable(payload);
}

bool checkMediaInfo(PrinterObject& printer, uint8_t mediaCode, uint32_t width, uint32_t length,
                    uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    if (width == 0 || length == 0) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    const auto table = readMediaTable(printer, resultCode);
    if (!table) return false;
    const auto media = findMedia(*table, {mediaCode, width, length});
    if (!media) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    printer.page.mediaCode = mediaCode;
    printer.page.printWidth = width;
    printer.page.printLength = length;
    printer.page.sectionWidth = media->sectionWidth;
    printer.page.sectionLengths = media->sectionLengths;
    device::setResult(resultCode, ZPRUSB_SUCCESS);
    return true;
}

}  // namespace printer
