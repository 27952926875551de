#include "file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "system.h"

namespace tool {
namespace {

std::filesystem::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

}  // namespace

Bytes readFile(const std::string& path, uint64_t largest) {
    const std::filesystem::path file = pathOf(path);
    std::error_code error;
    if (!std::filesystem::exists(file, error)) refuseFile(path, "does not exist.");
    const uint64_t size = std::filesystem::file_size(file, error);
    if (error) refuseFile(path, "is not a file that can be read.");
    if (size > largest) refuseFile(path, "is larger than " + std::to_string(largest >> 20) + " MiB.");
    Bytes content(size);
    std::ifstream stream(file, std::ios::binary);
    if (!stream.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(size)))
        refuseFile(path, "can't be read.");
    return content;
}

Bytes readInput(uint64_t largest) {
    makeInputBinary();
    Bytes content;
    uint8_t part[65536];
    for (size_t size = 1; size > 0 && content.size() <= largest;) {
        size = std::fread(part, 1, sizeof part, stdin);
        content.insert(content.end(), part, part + size);
    }
    if (content.size() > largest) refuseFile("-", "is larger than " + std::to_string(largest >> 20) + " MiB.");
    return content;
}

void writeFile(const std::string& path, ByteView content) {
    std::ofstream stream(pathOf(path), std::ios::binary);
    stream.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    if (!stream.flush()) refuseFile(path, "can't be written.");
}

}  // namespace tool
