#include "arguments.h"

#include <zprusb.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>

#include "failure.h"
#include "info_kinds.h"

namespace tool {
namespace {

void defineList(CLI::App& app, Arguments& arguments) {
    app.add_subcommand("list", "List the printers with number and label")->callback([&] {
        arguments.command = ListArguments{};
    });
}

void defineStatus(CLI::App& app, Arguments& arguments) {
    const auto status = std::make_shared<StatusArguments>();
    CLI::App* command = app.add_subcommand("status", "Say whether the printer is ready");
    command->add_flag("--all", status->all, "Ask all printers");
    command->callback([&arguments, status] { arguments.command = *status; });
}

void defineInfo(CLI::App& app, Arguments& arguments) {
    const auto info = std::make_shared<InfoArguments>();
    CLI::App* command = app.add_subcommand("info", "Show what the printer knows about itself");
    std::vector<std::string> words;
    for (const InfoKind& kind : infoKinds()) words.push_back(kind.word);
    command->add_option("what", info->kinds, "What to show; everything when nothing is named")
        ->check(CLI::IsMember(words));
    command->add_flag("--raw", info->raw, "Show the bytes of the records in hexadecimal");
    command->callback([&arguments, info] { arguments.command = *info; });
}

void readSize(const std::string& text, std::optional<WantedSize>& size) {
    size = parseSize(text);
    if (!size) throw CLI::ValidationError("--size", "'" + text + "' is no size like 6x4, 6x8in or 152x203mm");
}

void definePrint(CLI::App& app, Arguments& arguments) {
    const auto print = std::make_shared<PrintArguments>();
    CLI::App* command = app.add_subcommand("print", "Print a picture");
    command->add_option("image", print->image, "PNG or JPEG file")->required();
    command
        ->add_option_function<std::string>(
            "--size", [print](const std::string& text) { readSize(text, print->size); },
            "Page size in inches or millimetres, as 6x4, 6x8in or 152x203mm; "
            "otherwise the offered size that suits the picture best")
        ->type_name("WIDTHxLENGTH");
    command->add_option("--copies", print->copies, "Number of copies")
        ->check(CLI::Range(1, int{ZPRUSB_MAX_COPIES}));
    command->add_option("--long", print->section, "Print a section of a long page; 0 is the whole page")
        ->type_name("SECTION")
        ->check(CLI::Range(0, int{ZPRUSB_MAX_SECTION}));
    command->add_flag("--fit", print->fit, "Leave white margins instead of filling the page");
    command->callback([&arguments, print] { arguments.command = *print; });
}

void define(CLI::App& app, Arguments& arguments) {
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "zprusb " ZPRUSB_TOOL_VERSION);
    app.add_option("--printer", arguments.printer, "Number of the printer; otherwise the first one found")
        ->type_name("N")
        ->check(CLI::Range(0, int{ZPRUSB_MAX_PRINTERS} - 1));
    app.add_flag("--json", arguments.json, "Print JSON for programs");
    for (const auto& defineCommand : {defineList, defineStatus, defineInfo, definePrint})
        defineCommand(app, arguments);
}

}  // namespace

std::variant<Arguments, int> parseArguments(std::vector<std::string> words) {
    CLI::App app("Prints on RQX5820 USB printers and tells how they are.", "zprusb");
    Arguments arguments;
    define(app, arguments);
    std::ranges::reverse(words);  // the order that CLI11 takes them in
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? exitSuccess : exitWrongUsage;
    }
    return arguments;
}

}  // namespace tool
