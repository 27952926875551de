#include "printer.h"

#include <zprusb.h>

#include <algorithm>
#include <array>

#include "failure.h"
#include "result_text.h"

namespace tool {
namespace {

/// @param code by reference, as the call that fills it in may stand beside it among the arguments.
void require(uint32_t verdict, const uint16_t& code) {
    if (verdict == 0) throw Refusal(resultSentence(code));
}

std::vector<FoundPrinter> findPrinters() {
    std::array<uint8_t, ZPRUSB_MAX_PRINTERS> numbers;
    std::array<char, size_t{ZPRUSB_MAX_PRINTERS} * ZPRUSB_LABEL_SIZE> labels;
    const uint32_t count = zprusb_listupPrinter(numbers.data());
    zprusb_listupPrinterLbl(labels.data());
    std::vector<FoundPrinter> found;
    for (size_t i = 0; i < count; ++i) {
        const auto* label = reinterpret_cast<const uint8_t*>(labels.data()) + i * ZPRUSB_LABEL_SIZE;
        found.push_back({numbers[i], textOf({label, ZPRUSB_LABEL_SIZE})});
    }
    return found;
}

/// The library gives no code with a failed read, so the status is asked for the reason.
[[noreturn]] void refuseReading(const InfoKind& kind) {
    uint16_t code = ZPRUSB_SUCCESS;
    if (zprusb_status(&code) == 1) code = ZPRUSB_COMMUNICATION;
    throw Refusal("The printer did not tell '" + kind.word + "': " + resultSentence(code));
}

/// A started page reserves the printer until its end.
class StartedPage {
public:
    explicit StartedPage(const std::optional<uint8_t>& section) {
        uint16_t code = 0;
        const uint32_t verdict =
            section ? zprusb_startpagelong(&id_, *section, &code) : zprusb_startpage(&id_, &code);
        require(verdict, code);
    }
    ~StartedPage() { zprusb_endpage(nullptr); }
    StartedPage(const StartedPage&) = delete;
    StartedPage& operator=(const StartedPage&) = delete;

    uint16_t id() const { return id_; }

private:
    uint16_t id_ = 0;
};

/// In pieces, so that the progress can be told between them.
void send(ByteView pixels, const std::function<void(size_t)>& progress) {
    constexpr size_t piece = 256 * 1024;
    for (size_t sent = 0; sent < pixels.size();) {
        const ByteView part = pixels.subspan(sent, std::min(piece, pixels.size() - sent));
        const auto length = static_cast<uint32_t>(part.size());
        uint16_t code = 0;
        require(zprusb_write(part.data(), &length, &code), code);
        sent += part.size();
        progress(sent);
    }
}

}  // namespace

Printer::Printer(std::optional<uint8_t> number) {
    uint16_t code = 0;
    require(zprusb_open(&code), code);
    try {
        found_ = findPrinters();
        if (found_.empty()) throw Refusal(resultSentence(ZPRUSB_NO_PRINTER_FOUND));
        select(number.value_or(found_.front().number));
    } catch (...) {
        zprusb_close();
        throw;
    }
}

Printer::~Printer() {
    zprusb_close();
}

void Printer::select(uint8_t number) {
    uint16_t code = 0;
    number_ = static_cast<uint8_t>(zprusb_selectPrinter(number, &code));
    require(code == ZPRUSB_SUCCESS, code);
}

std::vector<uint16_t> Printer::status(const std::vector<uint8_t>& numbers) const {
    std::vector<uint8_t> list = numbers;
    list.push_back(ZPRUSB_LIST_END);
    std::vector<uint16_t> codes(numbers.size());
    zprusb_statusAll(list.data(), codes.data());
    return codes;
}

Bytes Printer::read(const InfoKind& kind) const {
    Bytes record(kind.size);
    uint32_t length = kind.size;
    if (zprusb_getPrinterInfo(kind.tag, record.data(), &length) == 0 || length != kind.size)
        refuseReading(kind);
    return record;
}

std::vector<MediaSize> Printer::mediaList() const {
    return decodeMediaList(read(infoKind(ZPRUSB_INFO_MEDIA)));
}

std::string Printer::uniqueString() const {
    return decodeUniqueString(read(infoKind(ZPRUSB_INFO_UNIQUE_STRING))).text;
}

uint16_t printPage(const Page& page, const std::function<void(size_t)>& progress) {
    const Sheet& sheet = page.sheet;
    uint16_t code = 0;
    require(zprusb_checkMediaInfo(sheet.media.code, sheet.width(), sheet.length, &code), code);
    require(zprusb_copies(page.copies, &code), code);
    const StartedPage started(page.section);
    send(page.pixels, progress);
    return started.id();
}

}  // namespace tool
