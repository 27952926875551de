#include <zprusb_text.h>

#include <algorithm>
#include <iostream>

#include "api/internal.h"
#include "commands.h"
#include "failure.h"
#include "firmware_image.h"
#include "printer.h"
#include "progress_bar.h"
#include "result_text.h"
#include "text.h"

namespace tool {
namespace {

/// Makes the printer expect the image.
void start(uint8_t target, uint32_t address, uint32_t length) {
    uint16_t code = 0;
    require(zprusb_openForUpdate(0, &code), code);
    require(zprusb_checkUpdateTarget(&code), code);
    require(zprusb_startUpdate(target, address, length, &code), code);
}

void send(ByteView image) {
    constexpr size_t partSize = 0x4000;
    ProgressBar bar("sending", image.size());
    for (size_t sent = 0; sent < image.size();) {
        auto part = static_cast<uint32_t>(std::min(partSize, image.size() - sent));
        uint16_t code = 0;
        const bool taken = zprusb_writeUpdateData(image.data(), &part, &code) == 1;
        sent += part;
        if (!taken)
            throw Refusal("The transfer broke off after " + std::to_string(sent) + " of " +
                          counted(image.size(), "byte", "bytes") + ": " + resultSentence(code));
        bar.show(sent);
    }
}

/// The last bytes may still be on their way when they have been sent, so the printer is asked for a sign of
/// life.
uint16_t statusAfterwards(const Printer& printer) {
    const uint16_t code = printer.status({printer.number()}).front();
    if (code == ZPRUSB_COMMUNICATION || code == ZPRUSB_NO_PRINTER)
        throw Refusal(
            "All bytes were sent, but the printer does not answer any more. It may be restarting; check "
            "its firmware then: " +
            resultSentence(code));
    return code;
}

}  // namespace

int run(const Arguments& common, const FirmwareUpdateArguments& arguments) {
    const FirmwareImage image(arguments.file);
    const auto length = static_cast<uint32_t>(image.bytes().size());
    const uint32_t address = arguments.start.value_or(image.first());
    const std::string load = counted(length, "byte", "bytes") + " of firmware to target " +
                             std::to_string(arguments.target) + " from address " + longHexadecimal(address) +
                             " on";
    confirm(common, "send " + load);

    const Printer printer(common.printer);
    start(arguments.target, address, length);
    if (!common.json) std::cout << "The printer has accepted the update.\n" << std::flush;
    send(image.bytes());
    const uint16_t status = statusAfterwards(printer);
    show({{{"printer", printer.number()},
           {"target", arguments.target},
           {"start", address},
           {"length", length},
           {"status", status}},
          "Sent " + load + ".\nThe printer reports code " + std::to_string(status) + ": " +
              zprusb_resultWords(status).meaning + "\n"},
         common.json);
    return exitSuccess;
}

}  // namespace tool
