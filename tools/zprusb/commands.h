/// The commands. Each one prints its result on standard output and returns the exit status.
#pragma once

#include "arguments.h"

namespace tool {

/// @throws Refusal, WrongUsage
int run(const CommonArguments& common, const ListArguments& arguments);
int run(const CommonArguments& common, const StatusArguments& arguments);
int run(const CommonArguments& common, const InfoArguments& arguments);
int run(const CommonArguments& common, const PrintArguments& arguments);
int run(const CommonArguments& common, const WatchArguments& arguments);
int run(const CommonArguments& common, const SetArguments& arguments);
int run(const CommonArguments& common, const ResetCounterArguments& arguments);
int run(const CommonArguments& common, const DoctorArguments& arguments);
int run(const CommonArguments& common, const BlinkArguments& arguments);
int run(const CommonArguments& common, const ResetArguments& arguments);

}  // namespace tool
