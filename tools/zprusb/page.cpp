#include "page.h"

#include <zprusb.h>

#include <algorithm>

#include "result_text.h"
#include "steps.h"
#include "system.h"

namespace tool {
namespace {

/// A started page reserves the printer until its end.
class StartedPage {
public:
    StartedPage(const Printer& printer, const std::optional<uint8_t>& section) {
        if (section) {
            printer.call("zprusb_startpagelong(&id, " + std::to_string(*section) + ", &code)",
                         [&](uint16_t* code) { return zprusb_startpagelong(&id_, *section, code); });
        } else {
            printer.call("zprusb_startpage(&id, &code)",
                         [&](uint16_t* code) { return zprusb_startpage(&id_, code); });
        }
    }
    ~StartedPage() {
        uint16_t code = 0;
        callLibrary({.what = "the page to end"}, "zprusb_endpage(&code)", code, zprusb_endpage);
    }
    StartedPage(const StartedPage&) = delete;
    StartedPage& operator=(const StartedPage&) = delete;

    uint16_t id() const { return id_; }

private:
    uint16_t id_ = 0;
};

std::string incomplete(size_t sent, size_t size) {
    return "At least " + std::to_string(sent) + " of the page's " + std::to_string(size) +
           " bytes went out; the page is incomplete.";
}

Refusal communicationRefusal(const std::string& sentence) {
    return {sentence + " " + resultSentence(ZPRUSB_COMMUNICATION), ZPRUSB_COMMUNICATION};
}

Patience patienceWith(size_t sent, size_t size, std::chrono::seconds limit) {
    return {
        .what = "the printer to take more data",
        .until = Clock::now() + limit,
        .tooLong =
            [=] {
                return communicationRefusal("The printer took no more data for " +
                                            std::to_string(limit.count()) + " s. " + incomplete(sent, size));
            },
        .interrupted =
            [=] {
                return Refusal("Interrupted while the printer took no more data. " + incomplete(sent, size));
            }};
}

/// In pieces, so that the progress can be told between them.
void send(ByteView pixels, std::chrono::seconds stallLimit, const std::function<void(size_t)>& progress) {
    constexpr size_t piece = 64 * 1024;
    progress(0);
    for (size_t sent = 0; sent < pixels.size();) {
        if (interruptedWithin(std::chrono::milliseconds(0)))
            throw Refusal("Interrupted. " + incomplete(sent, pixels.size()) + " The printer was given free.");
        const ByteView part = pixels.subspan(sent, std::min(piece, pixels.size() - sent));
        const auto length = static_cast<uint32_t>(part.size());
        uint16_t code = 0;
        const uint32_t verdict =
            callLibrary(patienceWith(sent, pixels.size(), stallLimit),
                        "zprusb_write(data, " + std::to_string(length) + ", &code)", code,
                        [&](uint16_t* result) { return zprusb_write(part.data(), &length, result); });
        if (verdict == 0)
            throw Refusal(incomplete(sent, pixels.size()) + " " + resultSentence(code), code, exitRefused);
        sent += part.size();
        progress(sent);
    }
}

uint16_t statusOf(const Printer& printer) {
    return printer.status({printer.number()}).front();
}

void requireNoTrouble(uint16_t code) {
    if (code != ZPRUSB_SUCCESS)
        throw Refusal(
            "All data of the page went out, but whether it is printed is not known. " + resultSentence(code),
            code, exitRefused);
}

struct Sentences {
    const char* tooLong;
    const char* interrupted;
};

/// @return the first status that is no such.
uint16_t awaitFree(const Printer& printer, const std::optional<unsigned>& seconds, const std::string& what,
                   const Sentences& sentences) {
    constexpr auto pause = std::chrono::milliseconds(250);
    WaitingNotice notice("printer " + std::to_string(printer.number()) + " " + what);
    const auto start = Clock::now();
    for (;;) {
        const uint16_t code = statusOf(printer);
        if (!isOccupied(code)) return code;
        if (seconds && Clock::now() - start > std::chrono::seconds(*seconds))
            throw Refusal(std::string(sentences.tooLong) + " " + resultSentence(code), code, exitBusy);
        notice.update();
        if (interruptedWithin(pause)) throw Refusal(sentences.interrupted);
    }
}

}  // namespace

bool isOccupied(uint16_t code) {
    return code == ZPRUSB_CONDITION_2100 || code == ZPRUSB_PRINTER_BUSY;
}

uint16_t sendPage(const Printer& printer, const Page& page, std::chrono::seconds stallLimit,
                  const std::function<void(size_t)>& progress) {
    const Sheet& sheet = page.sheet;
    printer.call("zprusb_checkMediaInfo(" + std::to_string(sheet.media.code) + ", " +
                     std::to_string(sheet.width()) + ", " + std::to_string(sheet.length) + ", &code)",
                 [&](uint16_t* code) {
                     return zprusb_checkMediaInfo(sheet.media.code, sheet.width(), sheet.length, code);
                 });
    printer.call("zprusb_copies(" + std::to_string(page.copies) + ", &code)",
                 [&](uint16_t* code) { return zprusb_copies(page.copies, code); });
    const StartedPage started(printer, page.section);
    send(page.pixels, stallLimit, progress);
    const uint16_t code = statusOf(printer);
    if (!isOccupied(code)) requireNoTrouble(code);
    return started.id();
}

void awaitReady(const Printer& printer, const std::optional<unsigned>& seconds) {
    awaitFree(printer, seconds, "which is printing",
              {"The printer did not become free.", "Interrupted while the printer was printing another page."});
}

void awaitPrinted(const Printer& printer, const std::optional<unsigned>& seconds) {
    requireNoTrouble(awaitFree(printer, seconds, "to print the page",
                               {"The page was sent, but the printer has not printed it yet.",
                                "Interrupted. The page was sent, and the printer goes on printing it."}));
}

}  // namespace tool
