/// The commands. Each one prints its result on standard output and returns the exit status.
#pragma once

#include "arguments.h"

namespace tool {

/// @throws Refusal, WrongUsage
int run(const Arguments& common, const ListArguments& arguments);
int run(const Arguments& common, const StatusArguments& arguments);
int run(const Arguments& common, const InfoArguments& arguments);
int run(const Arguments& common, const PrintArguments& arguments);

/// Prints a sentence on standard error, as every command's failures are.
void complain(const std::string& sentence);

}  // namespace tool
