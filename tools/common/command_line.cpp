#include "command_line.h"

#include <zprusb.h>

#include <algorithm>

#include "failure.h"

namespace tool {

void defineCommon(CLI::App& app, CommonArguments& arguments) {
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", app.get_name() + " " ZPRUSB_TOOL_VERSION);
    app.add_option("--printer", arguments.printer, "Number of the printer; otherwise the first one found")
        ->type_name("N")
        ->check(CLI::Range(0, int{ZPRUSB_MAX_PRINTERS} - 1));
    app.add_flag("--json", arguments.json, "Print JSON for programs");
}

std::optional<int> parse(CLI::App& app, std::vector<std::string> words) {
    std::ranges::reverse(words);  // the order that CLI11 takes them in
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? exitSuccess : exitWrongUsage;
    }
    return std::nullopt;
}

}  // namespace tool
