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

std::string ChildProcess::readAll() {
    std::string text;
    uint8_t bytes[4096];
    uint32_t count = 0;
    while (platform::readPipe(output_.reader, bytes, sizeof bytes, count) && count > 0)
        text.append(bytes, bytes + count);
    std::erase(text, '\r');
    return text;
}

}  // namespace test
