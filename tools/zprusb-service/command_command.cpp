#include <algorithm>
#include <charconv>

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
    uint32_t (*send)(const Words& values, uint16_t* code);
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

uint8_t byte(const std::string& word) {
    return number<uint8_t>(word);
}

const LoneCommand commands[] = {
    {"flash-led", "zprusb_cmdFlashLed", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_cmdFlashLed(code); }},
    {"reset", "zprusb_cmdReset", " KIND", 1, true,
     [](const Words& v, uint16_t* code) { return zprusb_cmdReset(byte(v[0]), code); }},
    {"get-status", "zprusb_cmdGetStatus", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_cmdGetStatus(code); }},
    {"get-media-info", "zprusb_cmdGetMediaInfo", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_cmdGetMediaInfo(code); }},
    {"get-model-name", "zprusb_getModelName", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_getModelName(code); }},
    {"self-diagnosis", "zprusb_cmdSelfDiagnosis", " KIND P1 P2", 3, true,
     [](const Words& v, uint16_t* code) {
         return zprusb_cmdSelfDiagnosis(byte(v[0]), byte(v[1]), byte(v[2]), code);
     }},
    {"get-self-diagnosis-results", "zprusb_cmdGetSelfDiagnosisResults", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_cmdGetSelfDiagnosisResults(code); }},
    {"get-firmware-info", "zprusb_cmdGetFirmwareInfo", " COMPONENT", 1, false,
     [](const Words& v, uint16_t* code) { return zprusb_cmdGetFirmwareInfo(byte(v[0]), code); }},
    {"get-eeprom", "zprusb_cmdGetEepromMaintenance", " ADDRESS COUNT", 2, false,
     [](const Words& v, uint16_t* code) {
         return zprusb_cmdGetEepromMaintenance(byte(v[0]), byte(v[1]), code);
     }},
    {"set-eeprom", "zprusb_cmdSetEepromMaintenance", " ADDRESS BYTE", 2, true,
     [](const Words& v, uint16_t* code) {
         const uint8_t value = byte(v[1]);
         return zprusb_cmdSetEepromMaintenance(byte(v[0]), 1, &value, code);
     }},
    {"print", "zprusb_cmdPrint", " JOB COPIES WIDTH LENGTH MEDIA OPTION BYTE9", 7, true,
     [](const Words& v, uint16_t* code) {
         return zprusb_cmdPrint(number<uint16_t>(v[0]), number<uint16_t>(v[1]), number<uint16_t>(v[2]),
                                number<uint16_t>(v[3]), byte(v[4]), byte(v[5]), byte(v[6]), code);
     }},
    {"update", "zprusb_cmdUpdate", " TARGET START LENGTH", 3, true,
     [](const Words& v, uint16_t* code) {
         return zprusb_cmdUpdate(byte(v[0]), number<uint32_t>(v[1]), number<uint32_t>(v[2]), code);
     }},
    {"get-unique-string", "zprusb_cmdGetPrinterUniqueString", "", 0, false,
     [](const Words&, uint16_t* code) { return zprusb_cmdGetPrinterUniqueString(code); }},
    {"set-unique-string", "zprusb_cmdSetPrinterUniqueString", " TEXT", 1, true,
     [](const Words& v, uint16_t* code) {
         const auto size = static_cast<uint8_t>(std::min<size_t>(v[0].size(), 255));
         return zprusb_cmdSetPrinterUniqueString(reinterpret_cast<const uint8_t*>(v[0].data()), size, code);
     }},
};

int tell(const Arguments& common, const Printer& printer, const LoneCommand& command, const Words& values) {
    std::string text = command.function + std::string("(");
    for (const std::string& value : values) text += value + ", ";
    call(text + "&code)", [&](uint16_t* code) { return command.send(values, code); });
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
    if (!command.changes) return tell(common, Printer(common.printer), command, arguments.values);
    const PrinterToChange printer(common, "send the command " + arguments.name);
    return tell(common, *printer, command, arguments.values);
}

}  // namespace tool
