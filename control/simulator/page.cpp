#include "page.h"

#include <algorithm>

#include "page_file.h"

namespace simulator {
namespace {

constexpr uint32_t maximumCopies = 999;
constexpr uint8_t sections = std::tuple_size_v<decltype(MediaSize::sectionLengths)>;

// Bounds of a variable length.
constexpr uint32_t minimumLength = 7112;
constexpr uint32_t defaultMaximumLength = 25120;

uint32_t maximumLength(const MediaSize& media) {
    const bool hasDefault = media.code >= 0xE0 && media.code <= 0xEF;
    return media.maximumLength == 0 && hasDefault ? defaultMaximumLength : media.maximumLength;
}

bool fits(const Page& page, const MediaSize& media) {
    if (page.mediaCode != media.code) return false;
    if (page.section.value_or(0) != 0) {
        return page.width == media.sectionWidth && page.length == media.sectionLengths[*page.section - 1u];
    }
    if (page.width != media.width) return false;
    if (isExactSize(media.code)) return page.length == media.length;
    return page.length >= minimumLength && page.length <= maximumLength(media);
}

bool isPossible(const Page& page, const PrinterSetup& setup) {
    return page.jobNumber != 0 && page.copies >= 1 && page.copies <= maximumCopies &&
           page.section.value_or(0) <= sections && page.width != 0 && page.length != 0 &&
           std::ranges::any_of(setup.media, [&](const MediaSize& media) { return fits(page, media); });
}

void endPage(Printer& printer, const Page& page, const std::filesystem::path& picture, bool complete) {
    const std::lock_guard lock(printer.mutex);
    ++printer.endedPages;
    printer.lastPage = picture;
    if (complete) {
        ++printer.printedPages;
        printer.countPrints(page.copies);
        printer.printingUntil = Clock::now() + printer.setup.timePerPage * page.copies;
    }
    printer.pageEnded.notify_all();
}

void finishPage(Printer& printer, const Page& page, const Bytes& pixels, size_t arrived) {
    try {
        const std::filesystem::path picture = writePage(printer.setup, page, pixels, arrived);
        endPage(printer, page, picture, arrived == pixels.size());
    } catch (const std::exception& error) {
        breakDown(printer, "write a page", error);
        endPage(printer, page, {}, false);
    }
}

Reply startPage(Printer& printer, const Page& page) {
    const Status status = printer.status();
    if (status.number != statusReady) return {errorAnswer(status)};
    if (!isPossible(page, printer.setup)) return {refuse(Refusal::outOfRange)};
    printer.jobNumber = page.jobNumber;
    Reply reply;
    reply.transfer = DataTransfer{.length = size_t{3} * pixelsOf(page.width) * pixelsOf(page.length),
                                  .missing = 0xFF,  // white paper
                                  .finish = [page](Printer& finished, const Bytes& pixels, size_t arrived) {
                                      finishPage(finished, page, pixels, arrived);
                                  }};
    return reply;
}

}  // namespace

uint32_t pixelsOf(uint32_t hundredthsOfMillimetre) {
    constexpr uint64_t dotsPerInch = 300, inch = 2540;
    return static_cast<uint32_t>((hundredthsOfMillimetre * dotsPerInch + inch / 2) / inch);
}

Reply print(Printer& printer, ByteView payload) {
    return startPage(printer, {.jobNumber = payload[0],
                               .copies = numberAt(payload, 1, 2),
                               .section = std::nullopt,
                               .width = numberAt(payload, 3, 2),
                               .length = numberAt(payload, 5, 2),
                               .mediaCode = payload[7],
                               .option20 = payload[8],
                               .option21 = numberAt(payload, 10, 2),
                               .option22 = numberAt(payload, 12, 2)});
}

Reply printLong(Printer& printer, ByteView payload) {
    return startPage(printer, {.jobNumber = payload[0],
                               .copies = numberAt(payload, 1, 2),
                               .section = payload[3],
                               .width = numberAt(payload, 4, 4),
                               .length = numberAt(payload, 8, 4),
                               .mediaCode = payload[12],
                               .option20 = payload[13],
                               .option21 = numberAt(payload, 15, 2),
                               .option22 = numberAt(payload, 17, 2)});
}

}  // namespace simulator
