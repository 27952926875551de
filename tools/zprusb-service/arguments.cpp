#include "arguments.h"

#include <zprusb.h>

#include "api/internal.h"
#include "command_line.h"

namespace tool {
namespace {

const CLI::Validator anyByte = inRange(0, 0xFF);

/// Bytes as pairs of hexadecimal digits, in one word or in several, each with or without 0x before it.
Bytes bytesOf(const std::vector<std::string>& words) {
    Bytes bytes;
    for (const std::string& word : words) {
        const std::string digits = word.starts_with("0x") ? word.substr(2) : word;
        if (digits.empty() || digits.size() % 2 != 0 ||
            digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            throw CLI::ValidationError("bytes", "'" + word + "' is no row of bytes like 0a or 0x01ff");
        for (size_t at = 0; at < digits.size(); at += 2)
            bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(at, 2), nullptr, 16)));
    }
    return bytes;
}

template <class Values>
CLI::Option* addBytes(const Command<Values>& command, size_t most) {
    return command.app
        ->template add_option_function<std::vector<std::string>>(
            "bytes",
            [values = command.values, most](const std::vector<std::string>& words) {
                values->bytes = bytesOf(words);
                if (values->bytes.size() > most)
                    throw CLI::ValidationError("bytes", "there are more than " + std::to_string(most));
            },
            "Bytes in hexadecimal, as 0a 1b or 0x0a1b")
        ->type_name("HEX");
}

CLI::App& addGroup(CLI::App& app, const char* name, const char* description) {
    CLI::App* group = app.add_subcommand(name, description);
    return *group->require_subcommand(1);
}

void defineEeprom(CLI::App& app, Arguments& arguments) {
    CLI::App& group = addGroup(app, "eeprom", "Read or write the 256 bytes of maintenance memory");
    const auto read =
        addCommand<EepromReadArguments>(group, "read", "Show a part of the maintenance memory", arguments);
    read.app->add_option("address", read->address, "Address of the first byte")->required()->check(anyByte);
    read.app->add_option("count", read->count, "Number of bytes")->required()->check(inRange(1, 255));
    read.app->add_option("--out", read->out, "Write the bytes into this file instead")->type_name("FILE");

    const auto write = addCommand<EepromWriteArguments>(
        group, "write", "Overwrite a part of the maintenance memory, and verify it", arguments);
    write.app->add_option("address", write->address, "Address of the first byte")->required()->check(anyByte);
    write.app->add_option("--file", write->file, "Write the bytes of this file instead")
        ->type_name("FILE")
        ->excludes(addBytes(write, 255));

    const auto dump = addCommand<EepromDumpArguments>(group, "dump", "Save all 256 bytes in a file", arguments);
    dump.app->add_option("file", dump->file, "File that is written")->type_name("FILE")->required();
    const auto restore = addCommand<EepromRestoreArguments>(
        group, "restore", "Overwrite all 256 bytes, and verify them; the old ones are kept in a file first",
        arguments);
    restore.app->add_option("file", restore->file, "File of 256 bytes, such as 'dump' makes")
        ->type_name("FILE")
        ->required();
}

void defineDiagnose(CLI::App& app, Arguments& arguments) {
    const auto diagnose = addCommand<DiagnoseArguments>(
        app, "diagnose", "Start a self-diagnosis and show its 40 bytes of results", arguments);
    diagnose.app->add_option("kind", diagnose->kind, "Kind of the diagnosis")->check(inRange(1, 7));
    diagnose.app
        ->add_option(
            "p1", diagnose->first,
            "Its first parameter: 1 to 7 for kinds 2 and 6, 1 to 2 for kind 3, 1 to 3 for kinds 4 and 5, "
            "1 to 13 for kind 7")
        ->check(anyByte);
    diagnose.app
        ->add_option("p2", diagnose->second,
                     "Its second parameter: 1 to 5 for kind 3, 1 to 3 for kind 4, 1 to 2 for kind 5")
        ->check(anyByte);
    diagnose.app->add_flag("--results-only", diagnose->resultsOnly, "Show the results of the last diagnosis");
}

void defineDiagnoseData(CLI::App& app, Arguments& arguments) {
    const auto diagnose = addCommand<DiagnoseDataArguments>(
        app, "diagnose-data", "Start a self-diagnosis with any values and show the data of its answer",
        arguments);
    diagnose.app->add_option("kind", diagnose->kind, "Kind of the diagnosis")->required()->check(anyByte);
    diagnose.app->add_option("p1", diagnose->first, "Its first parameter")->check(anyByte);
    diagnose.app->add_option("p2", diagnose->second, "Its second parameter")->check(anyByte);
}

void defineErrorLog(CLI::App& app, Arguments& arguments) {
    const auto log = addCommand<ErrorLogArguments>(app, "errorlog", "Show the printer's error log", arguments);
    log.app->add_flag("--clear", log->clear, "Empty it instead");
}

void defineToneCurve(CLI::App& app, Arguments& arguments) {
    CLI::App& group = addGroup(app, "tonecurve", "Load or reset the printer's tone curves");
    const auto load = addCommand<ToneCurveLoadArguments>(group, "load", "Load a tone curve", arguments);
    load.app->add_option("file", load->file, "File of 1536 bytes")->type_name("FILE")->required();
    load.app->add_option("--curve", load->curve, "Which of the two curves")
        ->type_name("N")
        ->required()
        ->check(inRange(1, 2));
    addCommand<ToneCurveResetArguments>(group, "reset", "Make the printer forget its tone curves", arguments);
}

void defineMaintenance(CLI::App& app, Arguments& arguments) {
    CLI::App& group = addGroup(app, "maintenance", "Read maintenance data or set the maintenance values");
    const auto data =
        addCommand<MaintenanceDataArguments>(group, "data", "Show 38 bytes of maintenance data", arguments);
    data.app->add_option("a", data->first, "Which data")->required()->check(anyByte);
    data.app->add_option("b", data->second, "Which data")->required()->check(anyByte);
    const auto set =
        addCommand<MaintenanceSetArguments>(group, "set", "Set the six maintenance values", arguments);
    for (size_t i = 0; i < set->values.size(); ++i)
        set.app->add_option("v" + std::to_string(i + 1), set->values[i], "Value " + std::to_string(i + 1))
            ->required()
            ->check(inRange(0, 0xFFFF));
}

void defineUniversal(CLI::App& app, Arguments& arguments) {
    const auto universal = addCommand<UniversalArguments>(
        app, "universal", "Send the universal command and show the data of its answer", arguments);
    addBytes(universal, ZPRUSB_MAX_UNIVERSAL_SIZE)->required();
}

void defineRaw(CLI::App& app, Arguments& arguments) {
    const auto raw = addCommand<RawArguments>(
        app, "raw", "Send bytes as they are and show the answer; waits for it without end", arguments);
    addBytes(raw, ZPRUSB_MAX_ANSWER_SIZE)->required();
    raw.app->add_flag("--no-answer", raw->noAnswer, "Don't wait for an answer");
    addCommand<ReadRawArguments>(
        app, "read-raw", "Read pieces with a length before each; waits for them without end", arguments);
}

void defineModel(CLI::App& app, Arguments& arguments) {
    addCommand<ModelArguments>(app, "model", "Show model, name, serial and firmware of the printer", arguments);
}

void defineIdentifiers(CLI::App& app, Arguments& arguments) {
    const auto identifiers = addCommand<IdentifiersArguments>(
        app, "identifiers", "List the identifiers of the printers, or see which printer is selected by one",
        arguments);
    addBytes(identifiers, identifierSize);
}

void defineCommand(CLI::App& app, Arguments& arguments) {
    const auto command = addCommand<CommandArguments>(
        app, "command", "Send one command by itself and tell whether an answer came, whatever it says",
        arguments);
    command.app->add_option("name", command->name, "Which command")->required()->check(oneOf(commandNames()));
    command.app->add_option("values", command->values, "Its values: numbers, bytes in hexadecimal or a text");
}

void defineFirmware(CLI::App& app, Arguments& arguments) {
    CLI::App& group = addGroup(app, "firmware", "Look into firmware files, or send one to the printer");
    const char* description = "File of Motorola S-records";
    const auto inspect = addCommand<FirmwareInspectArguments>(
        group, "inspect", "Show the range, the sums and the gaps of a file; needs no printer", arguments);
    inspect.app->add_option("file", inspect->file, description)->type_name("FILE")->required();

    const auto update =
        addCommand<FirmwareUpdateArguments>(group, "update", "Send a file to the printer", arguments);
    update.app->add_option("file", update->file, description)->type_name("FILE")->required();
    update.app->add_option("--target", update->target, "Number of the part of the printer that it is for")
        ->type_name("N")
        ->required()
        ->check(anyByte);
    update.app
        ->add_option("--start", update->start, "Address to name to the printer; otherwise the file's lowest")
        ->type_name("ADDRESS");
    update.app->add_flag("--force", update->force, "Send also a file that 'inspect' warns of");
    update.app->add_flag("--dry-run", update->dryRun, "Do everything but send; asks nothing");
}

}  // namespace

std::variant<Arguments, int> parseArguments(std::vector<std::string> words) {
    CLI::App app("Maintains RQX5820 USB printers. For service technicians.", "zprusb-service");
    Arguments arguments;
    defineCommon(app, arguments);
    app.add_flag("--yes", arguments.confirmed, "Change the printer without asking");
    for (const auto& define :
         {defineEeprom, defineDiagnose, defineDiagnoseData, defineErrorLog, defineToneCurve, defineMaintenance,
          defineUniversal, defineRaw, defineModel, defineIdentifiers, defineCommand, defineFirmware})
        define(app, arguments);
    if (const auto status = parse(app, std::move(words))) return *status;
    return arguments;
}

}  // namespace tool
