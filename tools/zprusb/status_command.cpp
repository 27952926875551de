#include <algorithm>

#include "commands.h"
#include "failure.h"
#include "printer.h"
#include "program.h"
#include "result_text.h"
#include "view.h"

namespace tool {
namespace {

std::vector<uint8_t> numbersOf(const Printer& printer, bool all) {
    if (!all) return {printer.number()};
    std::vector<uint8_t> numbers;
    for (const FoundPrinter& found : printer.all()) numbers.push_back(found.number);
    return numbers;
}

View viewOf(uint8_t printer, uint16_t code) {
    const bool ready = code == ZPRUSB_SUCCESS;
    const ResultWords words = resultWords(code);
    return {{{"printer", printer},
             {"ready", ready},
             {"code", code},
             {"name", words.name},
             {"meaning", words.meaning}},
            "printer " + std::to_string(printer) + ": " +
                (ready                         ? "ready"
                 : code == ZPRUSB_PRINTER_BUSY ? "busy"
                                               : "not ready") +
                "\n"};
}

/// Of several printers, the one in the worst state decides.
int exitStatusOf(const std::vector<uint16_t>& codes) {
    int status = exitSuccess;
    for (const uint16_t code : codes) {
        const int one = tool::exitStatusOf(code);
        if (status == exitSuccess || one == exitRefused) status = one;
    }
    return status;
}

bool isChosen(const Device& device, const std::string& who) {
    return who.empty() || who == std::to_string(device.number) || who == serialIn(device.path);
}

/// The printers that are in use. The library's search would wait for them, so that no other one can be asked.
int showBusy(const CommonArguments& common, const StatusArguments& arguments,
             const std::vector<Device>& devices) {
    View view{{{"printers", Json::array()}}, ""};
    for (const Device& device : devices) {
        if (!arguments.all && !isChosen(device, common.printer.who)) continue;
        const View one = viewOf(static_cast<uint8_t>(device.number), ZPRUSB_PRINTER_BUSY);
        view.data["printers"].push_back(one.data);
        view.text += one.text;
        if (!arguments.all) break;
    }
    const Json& shown = view.data["printers"];
    if (shown.empty()) throw busyRefusal("The printers can't be searched while one of them is busy. ");
    complain(resultSentence(ZPRUSB_PRINTER_BUSY));
    show(arguments.all ? view : View{shown.front(), view.text}, common.json);
    return exitBusy;
}

}  // namespace

int run(const CommonArguments& common, const StatusArguments& arguments) {
    const std::vector<Device> devices = common.waitWasAsked ? std::vector<Device>() : printersInUse();
    if (!devices.empty()) return showBusy(common, arguments, devices);
    const Printer printer(common.printer);
    const std::vector<uint8_t> numbers = numbersOf(printer, arguments.all);
    const std::vector<uint16_t> codes = printer.status(numbers);
    View view{{{"printers", Json::array()}}, ""};
    for (size_t i = 0; i < numbers.size(); ++i) {
        const View one = viewOf(numbers[i], codes[i]);
        view.data["printers"].push_back(one.data);
        view.text += one.text;
        if (codes[i] != ZPRUSB_SUCCESS)
            complain("printer " + std::to_string(numbers[i]) + ": " + resultSentence(codes[i]));
    }
    show(arguments.all ? view : View{view.data["printers"].front(), view.text}, common.json);
    return exitStatusOf(codes);
}

}  // namespace tool
