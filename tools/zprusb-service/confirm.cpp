#include <cstdio>
#include <iostream>

#include "commands.h"
#include "failure.h"
#include "system.h"

namespace tool {

void confirm(const Arguments& common, const std::string& deed) {
    if (common.confirmed) return;
    if (!isTerminal(stdin) || !isTerminal(stdout))
        throw WrongUsage("Say --yes to " + deed + "; there is no terminal to ask on.");
    std::cout << "Really " << deed << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y") throw WrongUsage("Nothing was sent to the printer.");
}

}  // namespace tool
