/// The frame of the tools' main().
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tool {

/// Runs a tool with its arguments in UTF-8. What it throws becomes a sentence on standard error.
/// @param name stands before each such sentence.
/// @return the exit status.
int runProgram(const char* name, int argc, char** argv,
               const std::function<int(std::vector<std::string> words)>& program);

/// Prints a sentence on standard error, as every command's failures are.
void complain(const std::string& sentence);

}  // namespace tool
