/// Running a program and looking at what it says.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test {

/// The file name of a program: with the system's suffix.
std::string programName(const std::string& name);

/// For this process and all that it starts from now on.
void setEnvironment(const char* name, const std::filesystem::path& value);

/// Runs a program to its end, without a terminal and with nothing to read.
/// @param arguments in UTF-8, without quotation marks in them.
/// @param out, err the files that receive its output.
/// @return its exit status, or -1 when it can't be started or didn't end by itself.
int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& workingFolder, const std::filesystem::path& out,
               const std::filesystem::path& err);

}  // namespace test
