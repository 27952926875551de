#include <zprusb_text.h>

#include <algorithm>
#include <iostream>

#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "failure.h"
#include "file.h"
#include "firmware_image.h"
#include "printer_to_change.h"
#include "progress_bar.h"
#include "result_text.h"
#include "text.h"

namespace tool {
namespace {

/// @throws UnusableFile when the file is none that should be sent without a second thought.
void requireSoundness(const FirmwareImage& image, const FirmwareUpdateArguments& arguments) {
    if (image.records().doubts.empty() || arguments.force) return;
    std::string reason = "was not sent.";
    for (const std::string& doubt : image.records().doubts) reason += " " + doubt;
    refuseFile(arguments.file, reason + " Say --force to send it all the same.");
}

void openForUpdate() {
    call("zprusb_openForUpdate", zprusb_openForUpdate, uint32_t{0});
    call("zprusb_checkUpdateTarget", zprusb_checkUpdateTarget);
}

void send(ByteView image) {
    constexpr size_t partSize = 0x4000;
    ProgressBar bar("sending", image.size());
    for (size_t sent = 0; sent < image.size();) {
        auto part = static_cast<uint32_t>(std::min(partSize, image.size() - sent));
        const uint16_t code = codeOf("zprusb_writeUpdateData", zprusb_writeUpdateData, image.data(), &part);
        sent += part;
        if (code != ZPRUSB_SUCCESS)
            throw Refusal(
                "The connection broke while the data went out: " + std::to_string(sent) + " of " +
                    counted(image.size(), "byte", "bytes") +
                    " went out for certain. It is not known how much arrived, and the printer's firmware "
                    "may be damaged: " +
                    resultSentence(code),
                code);
        bar.show(sent);
    }
}

/// The last bytes may still be on their way when they have been sent, so the printer is asked for a sign of
/// life.
uint16_t statusAfterwards(const Printer& printer) {
    const uint16_t code = printer.status({printer.number()}).front();
    if (code == ZPRUSB_COMMUNICATION || code == ZPRUSB_NO_PRINTER)
        throw Refusal(
            "All bytes went out, but the printer does not answer any more. It may be restarting; or not all "
            "bytes "
            "arrived, and its firmware is damaged. Check its firmware when it is back: " +
                resultSentence(code),
            code);
    return code;
}

struct Plan {
    uint8_t target;
    uint32_t address;
    ByteView image;

    std::string inWords() const {
        return counted(image.size(), "byte", "bytes") + " of firmware to target " + std::to_string(target) +
               " from address " + longHexadecimal(address) + " on";
    }
};

View viewOf(const Plan& plan, const Printer& printer, const Identity& identity) {
    return {{{"printer", printer.number()},
             {"identity", identity.inJson()},
             {"target", plan.target},
             {"start", plan.address},
             {"length", plan.image.size()}},
            plan.inWords() + ".\nPrinter " + std::to_string(printer.number()) + ": " + identity.inWords()};
}

int rehearse(const Arguments& common, const Plan& plan) {
    const Printer printer(common.printer);
    requireChoice(common, printer);
    View view = viewOf(plan, printer, identify(printer));
    openForUpdate();
    view.data["sent"] = false;
    view.text = "Would send " + view.text + ".\nNothing was sent.\n";
    show(view, common.json);
    return exitSuccess;
}

int carryOut(const Arguments& common, const Plan& plan) {
    const PrinterToChange printer(common, "send " + plan.inWords());
    View view = viewOf(plan, *printer, identify(*printer));
    openForUpdate();
    call("zprusb_startUpdate", zprusb_startUpdate, plan.target, plan.address,
         static_cast<uint32_t>(plan.image.size()));
    if (!common.json) std::cout << "The printer has accepted the update.\n" << std::flush;
    send(plan.image);
    const uint16_t status = statusAfterwards(*printer);
    view.data["sent"] = true;
    view.data["status"] = status;
    view.text = "Sent " + view.text + " before the update.\nThe printer reports code " +
                std::to_string(status) + ": " + zprusb_resultWords(status).meaning + "\n";
    show(view, common.json);
    return exitSuccess;
}

}  // namespace

int run(const Arguments& common, const FirmwareUpdateArguments& arguments) {
    const FirmwareImage image(arguments.file);
    requireSoundness(image, arguments);
    const Plan plan{arguments.target, arguments.start.value_or(image.first()), image.bytes()};
    return arguments.dryRun ? rehearse(common, plan) : carryOut(common, plan);
}

}  // namespace tool
