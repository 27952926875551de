/// The frame of the tools' main().
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "failure.h"

namespace tool {

/// Runs a tool with its arguments in UTF-8. What it throws becomes a sentence on standard error and, when the
/// arguments ask for JSON, an object on standard output.
/// @param name stands before each such sentence.
/// @return the exit status.
int runProgram(const char* name, int argc, char** argv,
               const std::function<int(std::vector<std::string> words)>& program);

/// Prints a sentence on standard error, as every command's failures are, whatever names there are in it.
void complain(const std::string& sentence);

/// A failure as JSON tells it: an object with the one key "error".
nlohmann::ordered_json errorOf(const Failure& failure);

/// Tells a failure as runProgram() does.
/// @return the exit status.
int tellFailure(const Failure& failure);

/// Tells the failure and ends the program, whatever its threads are doing.
[[noreturn]] void leaveProgram(const Failure& failure);

}  // namespace tool
