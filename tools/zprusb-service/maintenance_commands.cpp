#include "api/internal.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer.h"

namespace tool {

int run(const Arguments& common, const MaintenanceDataArguments& arguments) {
    const Printer printer(common.printer);
    Bytes data(ZPRUSB_MAINTENANCE_DATA_SIZE);
    uint16_t code = 0;
    require(zprusb_getMaintenanceData(arguments.first, arguments.second, data.data(), &code), code);
    show(dumpOf(0, data), common.json);
    return exitSuccess;
}

int run(const Arguments& common, const MaintenanceSetArguments& arguments) {
    confirm(common, "overwrite the six maintenance values");
    const Printer printer(common.printer);
    const auto& v = arguments.values;
    uint16_t code = 0;
    require(zprusb_setMaintenanceParams(v[0], v[1], v[2], v[3], v[4], v[5], &code), code);
    show({{{"printer", printer.number()}, {"values", v}}, "Set the six maintenance values.\n"}, common.json);
    return exitSuccess;
}

}  // namespace tool
