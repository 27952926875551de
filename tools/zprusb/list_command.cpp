#include "commands.h"
#include "failure.h"
#include "printer.h"
#include "view.h"

namespace tool {
namespace {

/// What tells the printer from others: its label or, as long as nobody gave it one, its own string.
/// @return null when it can't be read, for example because another program is printing.
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
    View view{Json::array(), ""};
    for (const FoundPrinter& found : printer.all()) {
        const Json name = nameOf(printer, found);
        view.data.push_back({{"printer", found.number}, {"name", name}});
        view.text += std::to_string(found.number) + "  " +
                     (name.is_null() ? "(does not tell its name)" : name.get<std::string>()) + "\n";
    }
    show(view, common.json);
    return exitSuccess;
}

}  // namespace tool
