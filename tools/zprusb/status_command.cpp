#include <zprusb_text.h>

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
    return {
        {{"printer", printer}, {"ready", ready}, {"code", code}, {"meaning", zprusb_resultWords(code).meaning}},
        "printer " + std::to_string(printer) + ": " + (ready ? "ready" : "not ready") + "\n"};
}

}  // namespace

int run(const CommonArguments& common, const StatusArguments& arguments) {
    const Printer printer(common.printer);
    const std::vector<uint8_t> numbers = numbersOf(printer, arguments.all);
    const std::vector<uint16_t> codes = printer.status(numbers);
    View view{Json::array(), ""};
    for (size_t i = 0; i < numbers.size(); ++i) {
        const View one = viewOf(numbers[i], codes[i]);
        view.data.push_back(one.data);
        view.text += one.text;
        if (codes[i] != ZPRUSB_SUCCESS)
            complain("printer " + std::to_string(numbers[i]) + ": " + resultSentence(codes[i]));
    }
    show(arguments.all ? view : View{view.data.front(), view.text}, common.json);
    return std::ranges::all_of(codes, [](uint16_t code) { return code == ZPRUSB_SUCCESS; }) ? exitSuccess
                                                                                            : exitRefused;
}

}  // namespace tool
