#include "support/system.h"

namespace test {

std::string ChildProcess::readLine() {
    std::string line;
    uint8_t letter = 0;
    uint32_t count = 0;
    while (platform::readPipe(output_.reader, &letter, 1, count) && count == 1 && letter != '\n') {
        if (letter != '\r') line += static_cast<char>(letter);
    }
    return line;
}

}  // namespace test
