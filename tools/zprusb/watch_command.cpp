#include <zprusb.h>

#include <ctime>

#include "commands.h"
#include "failure.h"
#include "printer.h"
#include "result_text.h"
#include "system.h"
#include "view.h"

namespace tool {
namespace {

/// When the connection has failed, or the printer is still away, it takes a library that is opened anew to tell
/// whether it is back.
/// @param last none before the first time.
uint16_t statusOf(Printer& printer, const std::optional<uint16_t>& last) {
    const std::vector<uint8_t> number = {printer.number()};
    const auto statusAfterReopening = [&] {
        return printer.reopen() ? printer.status(number).front() : uint16_t{ZPRUSB_NO_PRINTER};
    };
    if (last == ZPRUSB_NO_PRINTER) return statusAfterReopening();
    const uint16_t code = printer.status(number).front();
    return code == ZPRUSB_COMMUNICATION ? statusAfterReopening() : code;
}

std::string wordsOf(uint16_t code) {
    if (code == ZPRUSB_SUCCESS) return "ready";
    if (code == ZPRUSB_NO_PRINTER) return "unplugged";
    return "not ready, code " + std::to_string(code) + ": " + resultWords(code).meaning;
}

std::string now(const char* format) {
    const std::time_t time = std::time(nullptr);
    char text[32];
    return {text, std::strftime(text, sizeof text, format, std::localtime(&time))};
}

View viewOf(uint8_t printer, uint16_t code) {
    return {{{"time", now("%Y-%m-%dT%H:%M:%S%z")},
             {"printer", printer},
             {"connected", code != ZPRUSB_NO_PRINTER},
             {"ready", code == ZPRUSB_SUCCESS},
             {"code", code},
             {"meaning", resultWords(code).meaning}},
            now("%H:%M:%S") + "  printer " + std::to_string(printer) + ": " + wordsOf(code) + "\n"};
}

}  // namespace

int run(const CommonArguments& common, const WatchArguments& arguments) {
    Printer printer(common.printer);
    noteInterruption();
    std::optional<uint16_t> shown;
    do {
        const uint16_t code = statusOf(printer, shown);
        if (code != shown && !showLine(viewOf(printer.number(), code), common.json)) return exitRefused;
        shown = code;
    } while (!interruptedWithin(std::chrono::milliseconds(arguments.interval)));
    return exitSuccess;
}

}  // namespace tool
