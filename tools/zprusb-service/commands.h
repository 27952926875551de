/// The commands. Each one prints its result on standard output and returns the exit status.
#pragma once

#include "arguments.h"

namespace tool {

/// @throws Refusal, WrongUsage, UnusableFile
int run(const Arguments& common, const EepromReadArguments& arguments);
int run(const Arguments& common, const EepromWriteArguments& arguments);
int run(const Arguments& common, const EepromDumpArguments& arguments);
int run(const Arguments& common, const EepromRestoreArguments& arguments);
int run(const Arguments& common, const DiagnoseArguments& arguments);
int run(const Arguments& common, const DiagnoseDataArguments& arguments);
int run(const Arguments& common, const ErrorLogArguments& arguments);
int run(const Arguments& common, const ToneCurveLoadArguments& arguments);
int run(const Arguments& common, const ToneCurveResetArguments& arguments);
int run(const Arguments& common, const MaintenanceDataArguments& arguments);
int run(const Arguments& common, const MaintenanceSetArguments& arguments);
int run(const Arguments& common, const UniversalArguments& arguments);
int run(const Arguments& common, const RawArguments& arguments);
int run(const Arguments& common, const ReadRawArguments& arguments);
int run(const Arguments& common, const ModelArguments& arguments);
int run(const Arguments& common, const IdentifiersArguments& arguments);
int run(const Arguments& common, const CommandArguments& arguments);
int run(const Arguments& common, const FirmwareInspectArguments& arguments);
int run(const Arguments& common, const FirmwareUpdateArguments& arguments);

}  // namespace tool
