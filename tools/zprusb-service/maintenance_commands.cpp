#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer_to_change.h"

namespace tool {

int run(const Arguments& common, const MaintenanceDataArguments& arguments) {
    const Printer printer(common.printer);
    Bytes data(ZPRUSB_MAINTENANCE_DATA_SIZE);
    call("zprusb_getMaintenanceData", zprusb_getMaintenanceData, arguments.first, arguments.second,
         data.data());
    show(dumpOf(0, data), common.json);
    return exitSuccess;
}

int run(const Arguments& common, const MaintenanceSetArguments& arguments) {
    const PrinterToChange printer(common, "overwrite the six maintenance values");
    const auto& v = arguments.values;
    call("zprusb_setMaintenanceParams", zprusb_setMaintenanceParams, v[0], v[1], v[2], v[3], v[4], v[5]);
    show({{{"printer", printer->number()}, {"values", v}}, "Set the six maintenance values.\n"}, common.json);
    return exitSuccess;
}

}  // namespace tool
