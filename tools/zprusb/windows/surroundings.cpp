#include "surroundings.h"

#include <windows.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace tool {

std::string faultOfLibraryFile(const std::string& path) {
    const std::filesystem::path file = std::u8string(path.begin(), path.end());
    std::error_code error;
    if (!std::filesystem::exists(file, error)) return "is missing.";
    std::ifstream stream(file, std::ios::binary);
    IMAGE_DOS_HEADER start{};
    if (!stream) return "may not be read by this user.";
    stream.read(reinterpret_cast<char*>(&start), sizeof start);
    if (start.e_magic != IMAGE_DOS_SIGNATURE) return "is no library of this system.";
    IMAGE_NT_HEADERS64 header{};
    stream.seekg(start.e_lfanew);
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    if (header.Signature != IMAGE_NT_SIGNATURE) return "is no library of this system.";
    if (header.FileHeader.Machine != IMAGE_FILE_MACHINE_AMD64) return "is made for another type of machine.";
    return "";
}

std::string missingNeedsOf(const std::string&) {
    return "Put the DLLs that it came with beside it.";
}

LockFolder lockFolder() {
    return {"", true};
}

std::vector<UsbDevice> usbPrinters() {
    return {};
}

std::string userOf(const std::string&) {
    return "another program";
}

}  // namespace tool
