/// Commands that make the printer do something, and have nothing to show but that it was done.
#include <zprusb.h>

#include "commands.h"
#include "failure.h"
#include "printer.h"
#include "view.h"

namespace tool {
namespace {

int control(const CommonArguments& common, const char* text, uint32_t (*function)(uint16_t* resultCode),
            const std::string& deed) {
    const Printer printer(common.printer);
    printer.call(text, function);
    show({{{"printer", printer.number()}}, "Printer " + std::to_string(printer.number()) + " " + deed + ".\n"},
         common.json);
    return exitSuccess;
}

}  // namespace

int run(const CommonArguments& common, const BlinkArguments&) {
    return control(common, "zprusb_blinkLED(&code)", zprusb_blinkLED, "flashes its LED");
}

int run(const CommonArguments& common, const ResetArguments&) {
    return control(common, "zprusb_resetPrinter(&code)", zprusb_resetPrinter, "resets itself");
}

int run(const CommonArguments& common, const ResetCounterArguments& arguments) {
    const Printer printer(common.printer);
    const uint8_t first = arguments.number.value_or(1);
    const uint8_t last = arguments.number.value_or(lastResettableCounter);
    View view{{{"printer", printer.number()}, {"counters", Json::array()}}, ""};
    for (uint8_t number = first; number <= last; ++number) {
        printer.call("zprusb_resetCounter(" + std::to_string(number) + ", &code)",
                     [number](uint16_t* code) { return zprusb_resetCounter(number, code); });
        view.data["counters"].push_back(number);
        view.text += "Counter " + std::to_string(number) + " of printer " + std::to_string(printer.number()) +
                     " is zero now.\n";
    }
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
