/// What a command-line tool needs from its operating system, so that text is UTF-8 everywhere else.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace tool {

/// The program's arguments, without its own name, in UTF-8. The parameters are those of main(); Windows
/// delivers them there in a legacy encoding, so its side asks the system again.
std::vector<std::string> argumentsInUtf8(int argc, char** argv);

/// The path of a file as the library takes it. On Windows that is the system's legacy encoding.
/// @throws UnusableFile when the path can't be written so.
std::string pathForLibrary(const std::string& utf8);

/// Makes a console show the UTF-8 that the program prints, and a closed pipe an error instead of a sudden end.
void prepareOutput();

/// Standard input delivers its bytes as they are.
void makeInputBinary();

bool isTerminal(std::FILE* stream);

/// From now on Ctrl-C is noted instead of ending the program. A second one ends it all the same.
void noteInterruption();

/// Waits for Ctrl-C.
/// @return whether it has come, now or before.
bool interruptedWithin(std::chrono::milliseconds time);

}  // namespace tool
