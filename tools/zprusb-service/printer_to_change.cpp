#include "printer_to_change.h"

#include <cstdio>
#include <iostream>

#include "control_library.h"
#include "failure.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

/// Before the printer is looked for, which may take long.
const CommonArguments& requireTerminal(const Arguments& common, const std::string& deed) {
    if (!common.confirmed && (!isTerminal(stdin) || !isTerminal(stdout)))
        throw WrongUsage("Say --yes to " + deed + "; there is no terminal to ask on.");
    return common;
}

}  // namespace

PrinterToChange::PrinterToChange(const Arguments& common, const std::string& deed)
    : printer_(requireTerminal(common, deed).printer) {
    requireChoice(common, printer_);
    if (common.confirmed) return;
    std::cout << "Printer " << unsigned{printer_.number()} << ": " << identify(printer_).inWords()
              << ".\nReally " << deed << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y") throw WrongUsage("Nothing was sent to the printer.");
}

void requireChoice(const Arguments& common, const Printer& printer) {
    if (!common.printer.who.empty() || printer.all().size() == 1) return;
    std::string list;
    for (const FoundPrinter& found : printer.all())
        list += (list.empty() ? "" : ", ") + std::to_string(found.number) + " (" +
                harmless(serialOf(found.number)) + ")";
    throw WrongUsage("Several printers are connected; choose the one to change with --printer: " + list + ".");
}

}  // namespace tool
