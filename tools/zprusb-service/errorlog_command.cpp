#include "api/internal.h"
#include "commands.h"
#include "dump.h"
#include "failure.h"
#include "printer.h"

namespace tool {
namespace {

int clear(const Arguments& common) {
    confirm(common, "empty the error log");
    const Printer printer(common.printer);
    uint16_t code = 0;
    require(zprusb_resetErrorLog(&code), code);
    show({{{"printer", printer.number()}}, "The error log is empty now.\n"}, common.json);
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
