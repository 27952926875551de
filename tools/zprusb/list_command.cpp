#include "commands.h"
#include "control_library.h"
#include "failure.h"
#include "printer.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

/// What tells the printer from others: its label or, as long as nobody gave it one, its own string.
/// @return null when it can't be read, for example because the printer does not answer.
Json nameOf(Printer& printer, const FoundPrinter& found) {
    if (!found.label.empty()) return found.label;
    try {
        printer.select(found.number);
        return printer.uniqueString();
    } catch (const Refusal&) {
        return nullptr;
    }
}

}  // namespace

int run(const CommonArguments& common, const ListArguments&) {
    Printer printer(common.printer);
    View view{{{"printers", Json::array()}}, ""};
    for (const FoundPrinter& found : printer.all()) {
        const Json name = nameOf(printer, found);
        view.data["printers"].push_back(
            {{"printer", found.number}, {"name", name}, {"serial", harmless(serialOf(found.number))}});
        view.text += std::to_string(found.number) + "  " +
                     (name.is_null() ? "(does not tell its name)" : name.get<std::string>()) + "\n";
    }
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
