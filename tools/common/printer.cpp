#include "printer.h"

#include <zprusb.h>

#include <array>

#include "failure.h"
#include "result_text.h"

namespace tool {
namespace {

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

}  // namespace

void require(uint32_t verdict, const uint16_t& code) {
    if (verdict == 0) throw Refusal(resultSentence(code), code);
}

Printer::Printer(std::optional<uint8_t> number) {
    uint16_t code = 0;
    require(zprusb_open(&code), code);
    try {
        found_ = findPrinters();
        if (found_.empty()) throw Refusal(resultSentence(ZPRUSB_NO_PRINTER_FOUND), ZPRUSB_NO_PRINTER_FOUND);
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

bool Printer::reopen() {
    zprusb_close();
    uint16_t code = ZPRUSB_SUCCESS;
    if (zprusb_open(&code) == 1) zprusb_selectPrinter(number_, &code);
    return code == ZPRUSB_SUCCESS;
}

void Printer::set(uint16_t tag, ByteView value) {
    const auto length = static_cast<uint32_t>(value.size());
    uint16_t code = 0;
    require(zprusb_setPrinterInfo(tag, value.data(), &length, &code), code);
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

}  // namespace tool
