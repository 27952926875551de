#include "printer/media.h"

#include <optional>

#include "device/reservation.h"
#include "protocol/exchange.h"
#include "protocol/requests.h"

namespace printer {

namespace {

using protocol::MediaEntry;

struct MediaSize {
    uint8_t mediaCode;
    uint32_t width;
    uint32_t length;
};

bool isWithin(uint8_t code, uint8_t first, uint8_t last) {
    return first <= code && code <= last;
}

bool matches(const device::MediaRules& rules, const MediaEntry& entry, const MediaSize& wanted) {
    const uint8_t code = wanted.mediaCode;
    if (entry.mediaCode != code || entry.width != wanted.width) return false;
    if (isWithin(code, rules.firstExactCode, rules.lastExactCode)) return entry.length == wanted.length;
    const bool isDefaulted = isWithin(code, rules.firstDefaultedCode, rules.lastDefaultedCode);
    const uint32_t longest =
        entry.longestLength == 0 && isDefaulted ? rules.defaultLongestLength : entry.longestLength;
    return rules.shortestLength <= wanted.length && wanted.length <= longest;
}

/// The first entry that matches wins.
std::optional<MediaEntry> findMedia(const device::MediaRules& rules, const protocol::MediaTable& table,
                                    const MediaSize& wanted) {
    for (uint32_t index = 0; index < table.count(); ++index) {
        const MediaEntry entry = table.entry(index);
        if (matches(rules, entry, wanted)) return entry;
    }
    return std::nullopt;
}

}  // namespace

Result readMediaTable(PrinterObject& printer, protocol::MediaTable& table) {
    protocol::Payload payload;
    const Result result = protocol::fetch(printer.connection, protocol::request::getMediaInfo(), payload);
    if (result) table = protocol::MediaTable(payload);
    return result;
}

Result checkMediaInfo(PrinterObject& printer, uint8_t mediaCode, uint32_t width, uint32_t length) {
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    if (width == 0 || length == 0) return device::failure(ZPRUSB_BAD_ARGUMENT);
    protocol::MediaTable table;
    const Result read = readMediaTable(printer, table);
    if (!read) return read;
    const auto media = findMedia(device::modelOf(printer).media, table, {mediaCode, width, length});
    if (!media) return device::failure(ZPRUSB_BAD_ARGUMENT);
    printer.page.mediaCode = mediaCode;
    printer.page.printWidth = width;
    printer.page.printLength = length;
    printer.page.sectionWidth = media->sectionWidth;
    printer.page.sectionLengths = media->sectionLengths;
    return device::done;
}

}  // namespace printer
