#include "api/internal.h"
#include "call.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer_to_change.h"

namespace tool {
namespace {

int clear(const Arguments& common) {
    const PrinterToChange printer(common, "empty the error log");
    call("zprusb_resetErrorLog", zprusb_resetErrorLog);
    show({{{"printer", printer->number()}}, "The error log is empty now.\n"}, common.json);
    return exitSuccess;
}

}  // namespace

int run(const Arguments& common, const ErrorLogArguments& arguments) {
    if (arguments.clear) return clear(common);
    const Printer printer(common.printer);
    show(dumpOf(0, printer.read(infoKind(ZPRUSB_INFO_ERROR_LOG))), common.json);
    return exitSuccess;
}

}  // namespace tool
