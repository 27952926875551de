#include "system.h"

#include <unistd.h>

namespace tool {

std::vector<std::string> argumentsInUtf8(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

void useUtf8Console() {}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

}  // namespace tool
