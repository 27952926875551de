/// What a command-line tool needs from its operating system, so that text is UTF-8 everywhere else.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace tool {

/// The program's arguments, without its own name, in UTF-8. The parameters are those of main(); Windows
/// delivers them there in a legacy encoding, so its side asks the system again.
std::vector<std::string> argumentsInUtf8(int argc, char** argv);

/// Makes a console show the UTF-8 that the program prints.
void useUtf8Console();

bool isTerminal(std::FILE* stream);

}  // namespace tool
