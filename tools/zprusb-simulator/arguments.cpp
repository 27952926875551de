#include "arguments.h"

#include "command_line.h"

namespace tool {

std::variant<Arguments, int> parseArguments(std::vector<std::string> words) {
    CLI::App app("Changes the simulated printers of a running program.", "zprusb-simulator");
    app.footer(
        "Exit status: 0 done, 1 the program did not answer, 2 wrong usage, 5 no program simulates printers.");
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", app.get_name() + " " ZPRUSB_TOOL_VERSION);
    Arguments arguments;
    app.add_option("--process", arguments.process,
                   "Number of the program's process; needed when there are several")
        ->type_name("PID");
    app.add_option("--printer", arguments.printer, "Device number of the printer; otherwise 0")->type_name("N");
    app.add_flag("--json", arguments.json, "Print JSON for programs");

    addCommand<ShowArguments>(app, "show", "Show the simulated printers of all programs", arguments);
    const auto set = addCommand<SetArguments>(app, "set", "Change a printer", arguments);
    set.app
        ->add_option("values", set->values,
                     "condition=\"out of media\", errorGroup=6 errorDetail=2 of a device error, plugged=false, "
                     "statusFlags=[1,0]")
        ->type_name("KEY=VALUE")
        ->required();
    const auto fault = addCommand<FaultArguments>(app, "fault", "Add a fault to a printer", arguments);
    const auto values =
        fault.app
            ->add_option("values", fault->values,
                         "The keys of a fault in a configuration, as in command=Print action=never")
            ->type_name("KEY=VALUE");
    fault.app->add_flag("--clear", fault->clear, "Remove all faults of the printer instead")->excludes(values);
    if (const auto status = parse(app, std::move(words))) return *status;
    return arguments;
}

}  // namespace tool
