#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "failure.h"
#include "printer_to_change.h"
#include "view.h"

namespace tool {
namespace {

using Words = std::vector<std::string>;

struct LoneCommand {
    const char* name;
    const char* function;  // of the library
    const char* values;    // what it takes
    size_t count;          // how many
    bool changes;          // the printer
    ServiceCall (*prepare)(const Words& values);
};

template <class Number>
Number number(const std::string& word) {
    const bool isHexadecimal = word.starts_with("0x");
    const char* first = word.data() + (isHexadecimal ? 2 : 0);
    Number value = 0;
    const auto [end, error] = std::from_chars(first, word.data() + word.size(), value, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != word.data() + word.size())
        throw WrongUsage("'" + word + "' is no number from 0 to " + std::to_string(Number(-1)) + ".");
    return value;
}

template <class... Parameters>
ServiceCall withNumbers(uint32_t (*function)(Parameters...), const Words& words) {
    return [&]<size_t... at>(std::index_sequence<at...>)->ServiceCall {
        const std::tuple values(number<std::tuple_element_t<at, std::tuple<Parameters...>>>(words[at])...);
        return [=](uint16_t* code) { return function(std::get<at>(values)..., code); };
    }
    (std::make_index_sequence<sizeof...(Parameters) - 1>());
}

/// The call of a function whose values are all numbers. @throws WrongUsage
template <auto function>
ServiceCall ofNumbers(const Words& words) {
    return withNumbers(function, words);
}

ServiceCall ofMemory(const Words& words) {
    return [address = number<uint8_t>(words[0]), value = number<uint8_t>(words[1])](uint16_t* code) {
        return zprusb_cmdSetEepromMaintenance(address, 1, &value, code);
    };
}

ServiceCall ofText(const Words& words) {
    return [text = words[0]](uint16_t* code) {
        const auto size = static_cast<uint8_t>(std::min<size_t>(text.size(), 255));
        return zprusb_cmdSetPrinterUniqueString(reinterpret_cast<const uint8_t*>(text.data()), size, code);
    };
}

const LoneCommand commands[] = {
    {"flash-led", "zprusb_cmdFlashLed", "", 0, false, ofNumbers<zprusb_cmdFlashLed>},
    {"reset", "zprusb_cmdReset", " KIND", 1, true, ofNumbers<zprusb_cmdReset>},
    {"get-status", "zprusb_cmdGetStatus", "", 0, false, ofNumbers<zprusb_cmdGetStatus>},
    {"get-media-info", "zprusb_cmdGetMediaInfo", "", 0, false, ofNumbers<zprusb_cmdGetMediaInfo>},
    {"get-model-name", "zprusb_getModelName", "", 0, false, ofNumbers<zprusb_getModelName>},
    {"self-diagnosis", "zprusb_cmdSelfDiagnosis", " KIND P1 P2", 3, true, ofNumbers<zprusb_cmdSelfDiagnosis>},
    {"get-self-diagnosis-results", "zprusb_cmdGetSelfDiagnosisResults", "", 0, false,
     ofNumbers<zprusb_cmdGetSelfDiagnosisResults>},
    {"get-firmware-info", "zprusb_cmdGetFirmwareInfo", " COMPONENT", 1, false,
     ofNumbers<zprusb_cmdGetFirmwareInfo>},
    {"get-eeprom", "zprusb_cmdGetEepromMaintenance", " ADDRESS COUNT", 2, false,
     ofNumbers<zprusb_cmdGetEepromMaintenance>},
    {"set-eeprom", "zprusb_cmdSetEepromMaintenance", " ADDRESS BYTE", 2, true, ofMemory},
    {"print", "zprusb_cmdPrint", " JOB COPIES WIDTH LENGTH MEDIA OPTION BYTE9", 7, true,
     ofNumbers<zprusb_cmdPrint>},
    {"update", "zprusb_cmdUpdate", " TARGET START LENGTH", 3, true, ofNumbers<zprusb_cmdUpdate>},
    {"get-unique-string", "zprusb_cmdGetPrinterUniqueString", "", 0, false,
     ofNumbers<zprusb_cmdGetPrinterUniqueString>},
    {"set-unique-string", "zprusb_cmdSetPrinterUniqueString", " TEXT", 1, true, ofText},
};

int tell(const Arguments& common, const Printer& printer, const CommandArguments& arguments,
         const LoneCommand& command, const ServiceCall& prepared) {
    std::string text = command.function + std::string("(");
    for (const std::string& value : arguments.values) text += value + ", ";
    call(text + "&code)", prepared);
    show({{{"printer", printer.number()}, {"command", command.name}, {"answered", true}},
          "The printer has answered. What it says is not looked at.\n"},
         common.json);
    return exitSuccess;
}

}  // namespace

std::vector<std::string> commandNames() {
    std::vector<std::string> names;
    for (const LoneCommand& command : commands) names.emplace_back(command.name);
    return names;
}

int run(const Arguments& common, const CommandArguments& arguments) {
    const LoneCommand& command = *std::ranges::find(commands, arguments.name, &LoneCommand::name);
    if (arguments.values.size() != command.count)
        throw WrongUsage("The command is: " + arguments.name + command.values + ".");
    const ServiceCall prepared = command.prepare(arguments.values);
    if (!command.changes) return tell(common, Printer(common.printer), arguments, command, prepared);
    const PrinterToChange printer(common, "send the command " + arguments.name);
    return tell(common, *printer, arguments, command, prepared);
}

}  // namespace tool
