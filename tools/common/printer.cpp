#include "printer.h"

#include <zprusb.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "failure.h"
#include "result_text.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

constexpr auto searchAlone = std::chrono::seconds(10);  // for a search that has nobody to wait for
constexpr const char* busyPrinter = "a printer that another program is using";

std::vector<FoundPrinter> findPrinters(const Patience& patience) {
    std::array<uint8_t, ZPRUSB_MAX_PRINTERS> numbers;
    std::array<char, size_t{ZPRUSB_MAX_PRINTERS} * ZPRUSB_LABEL_SIZE> labels;
    uint16_t none = 0;
    const uint32_t count = callLibrary(patience, "zprusb_listupPrinter(list)", none,
                                       [&](uint16_t*) { return zprusb_listupPrinter(numbers.data()); });
    callLibrary(patience, "zprusb_listupPrinterLbl(labels)", none,
                [&](uint16_t*) { return zprusb_listupPrinterLbl(labels.data()); });
    std::vector<FoundPrinter> found;
    for (size_t i = 0; i < count; ++i) {
        const auto* label = reinterpret_cast<const uint8_t*>(labels.data()) + i * ZPRUSB_LABEL_SIZE;
        found.push_back({numbers[i], textOf({label, ZPRUSB_LABEL_SIZE})});
    }
    return found;
}

void closeLibrary() {
    uint16_t none = 0;
    callLibrary({.what = "the library to close"}, "zprusb_close()", none, [](uint16_t*) {
        zprusb_close();
        return 1u;
    });
}

Refusal refusalOf(uint16_t code) {
    return {resultSentence(code), code};
}

/// The library gives no code with a failed read, so the status is asked for the reason.
void tellReason(uint16_t* code) {
    if (zprusb_status(code) == 1) *code = ZPRUSB_COMMUNICATION;
}

std::optional<uint8_t> numberIn(const std::string& text) {
    uint8_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

}  // namespace

void require(uint32_t verdict, const uint16_t& code) {
    if (verdict == 0) throw refusalOf(code);
}

Refusal busyRefusal(const std::string& remark) {
    return {remark + resultSentence(ZPRUSB_PRINTER_BUSY), ZPRUSB_PRINTER_BUSY};
}

std::vector<Device> printersInUse() {
    std::vector<Device> devices = connectedDevices();
    std::erase_if(devices,
                  [](const Device& device) { return !device.isPrinter() || useOf(device) != Use::inUse; });
    return devices;
}

Printer::Printer(const PrinterChoice& choice) : waitSeconds_(choice.waitSeconds) {
    if (neverWaits() && !printersInUse().empty()) throw busyRefusal("");
    try {
        open();
        if (found_.empty()) throw refusalOf(ZPRUSB_NO_PRINTER_FOUND);
        select(choice.who.empty() ? found_.front().number : chosen(choice.who));
    } catch (...) {
        closeLibrary();
        throw;
    }
}

Printer::~Printer() {
    closeLibrary();
}

Patience Printer::patience() const {
    return {.what = busyPrinter, .until = until_, .tooLong = [seconds = waitSeconds_.value_or(0)] {
                return busyRefusal("Waited for " + std::to_string(seconds) + " s. ");
            }};
}

void Printer::open() {
    if (waitSeconds_)
        until_ = Clock::now() + (neverWaits() ? searchAlone : std::chrono::seconds(*waitSeconds_));
    uint16_t code = 0;
    require(callLibrary(patience(), "zprusb_open(&code)", code, zprusb_open), code);
    found_ = findPrinters(patience());
    if (neverWaits()) until_ = Clock::now();
}

/// A name that is a number too can't be told from it, so the number comes first.
uint8_t Printer::chosen(const std::string& who) {
    const auto number = numberIn(who);
    if (number && std::ranges::find(found_, *number, &FoundPrinter::number) != found_.end()) return *number;
    for (const FoundPrinter& found : found_)
        if (serialOf(found.number) == who) return found.number;
    for (const FoundPrinter& found : found_) {
        select(found.number);
        if (uniqueString() == who) return found.number;
    }
    throw Refusal("There is no printer '" + harmless(who) + "'. " + resultSentence(ZPRUSB_NOT_SELECTABLE),
                  ZPRUSB_NOT_SELECTABLE);
}

void Printer::select(uint8_t number) {
    uint16_t code = 0;
    const std::string text = "zprusb_selectPrinter(" + std::to_string(number) + ", &code)";
    number_ = static_cast<uint8_t>(callLibrary(
        forAnswers, text, code, [number](uint16_t* result) { return zprusb_selectPrinter(number, result); }));
    require(code == ZPRUSB_SUCCESS, code);
}

bool Printer::reopen() {
    closeLibrary();
    found_.clear();
    try {
        open();
        if (std::ranges::find(found_, number_, &FoundPrinter::number) == found_.end()) return false;
        select(number_);
        return true;
    } catch (const Refusal&) {
        return false;
    }
}

void Printer::call(const std::string& text, const std::function<uint32_t(uint16_t*)>& function) const {
    constexpr auto pause = std::chrono::milliseconds(100);
    WaitingNotice notice("printer " + std::to_string(number_) + ", which another program is using");
    uint16_t code = ZPRUSB_SUCCESS;
    while (callLibrary(forAnswers, text, code, function) == 0) {
        if (code != ZPRUSB_PRINTER_BUSY) throw refusalOf(code);
        if (isPastWait()) throw busyRefusal("");
        notice.update();
        if (interruptedWithin(pause)) throw Refusal("Interrupted while another program is using the printer.");
    }
}

void Printer::set(uint16_t tag, ByteView value) {
    const auto length = static_cast<uint32_t>(value.size());
    const std::string text = "zprusb_setPrinterInfo(" + std::to_string(tag) + ", {" + hexOf(value, " ") +
                             "}, " + std::to_string(length) + ", &code)";
    call(text, [&](uint16_t* code) { return zprusb_setPrinterInfo(tag, value.data(), &length, code); });
}

std::vector<uint16_t> Printer::status(const std::vector<uint8_t>& numbers) const {
    std::vector<uint8_t> list = numbers;
    list.push_back(ZPRUSB_LIST_END);
    std::vector<uint16_t> codes(numbers.size());
    callLibrary(forAnswers, "zprusb_statusAll({" + hexOf(list, " ") + "}, codes)", codes.front(),
                [&](uint16_t*) { return zprusb_statusAll(list.data(), codes.data()); });
    return codes;
}

Bytes Printer::read(const InfoKind& kind) const {
    Bytes record(kind.size);
    const auto readOnce = [&](uint16_t* code) {
        uint32_t length = kind.size;
        const bool whole = zprusb_getPrinterInfo(kind.tag, record.data(), &length) == 1 && length == kind.size;
        if (!whole) tellReason(code);
        return whole ? 1u : 0u;
    };
    try {
        call("zprusb_getPrinterInfo(" + std::to_string(kind.tag) + ", record, &length)", readOnce);
    } catch (const Refusal& refusal) {
        throw Refusal("The printer did not tell '" + kind.word + "': " + refusal.what(), refusal.code());
    }
    return record;
}

std::vector<MediaSize> Printer::mediaList() const {
    return decodeMediaList(read(infoKind(ZPRUSB_INFO_MEDIA)));
}

std::string Printer::uniqueString() const {
    return decodeUniqueString(read(infoKind(ZPRUSB_INFO_UNIQUE_STRING))).text;
}

}  // namespace tool
