/// The commands. Each one prints its result on standard output and returns the exit status.
#pragma once

#include "arguments.h"

namespace tool {

/// @throws Refusal, WrongUsage
int run(const Arguments& common, const EepromReadArguments& arguments);
int run(const Arguments& common, const EepromWriteArguments& arguments);
int run(const Arguments& common, const DiagnoseArguments& arguments);
int run(const Arguments& common, const ErrorLogArguments& arguments);
int run(const Arguments& common, const ToneCurveLoadArguments& arguments);
int run(const Arguments& common, const ToneCurveResetArguments& arguments);
int run(const Arguments& common, const MaintenanceDataArguments& arguments);
int run(const Arguments& common, const MaintenanceSetArguments& arguments);
int run(const Arguments& common, const UniversalArguments& arguments);
int run(const Arguments& common, const RawArguments& arguments);
int run(const Arguments& common, const FirmwareInspectArguments& arguments);
int run(const Arguments& common, const FirmwareUpdateArguments& arguments);

/// Asks on the terminal before the printer is changed, unless the command line says yes.
/// @param deed what is going to be done: "empty the error log".
/// @throws WrongUsage when the answer is no, or there is no terminal to ask on.
void confirm(const Arguments& common, const std::string& deed);

}  // namespace tool
