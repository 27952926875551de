#include <algorithm>

#include "commands.h"
#include "failure.h"
#include "printer.h"
#include "settings.h"
#include "view.h"

namespace tool {

int run(const CommonArguments& common, const SetArguments& arguments) {
    const auto setting = std::ranges::find(settings(), arguments.name, &Setting::word);
    const auto value = setting->encode(arguments.value);
    if (!value)
        throw WrongUsage("'" + arguments.value + "' is no value for '" + arguments.name + "', which takes " +
                         setting->range + ".");
    Printer printer(common.printer);
    printer.set(setting->tag, *value);
    show({{{"printer", printer.number()}, {"setting", arguments.name}, {"value", arguments.value}},
          "Set the " + arguments.name + " of printer " + std::to_string(printer.number()) + " to " +
              arguments.value + ".\n"},
         common.json);
    return exitSuccess;
}

}  // namespace tool
