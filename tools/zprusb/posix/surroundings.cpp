#include "surroundings.h"

#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace tool {
namespace {

namespace fs = std::filesystem;

/// The machine type that a file is made for.
uint16_t machineOf(std::ifstream& stream) {
    Elf64_Ehdr header{};
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 ? header.e_machine : uint16_t{EM_NONE};
}

std::string lineOf(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

std::string padded3(const std::string& number) {
    return std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
}

/// Whether a process has locked the file. It is known by its number: the name may be newer than the open file.
bool holds(const fs::path& process, const fs::path& lockFile) {
    std::error_code error;
    for (const auto& descriptor : fs::directory_iterator(process / "fd", error)) {
        if (!fs::equivalent(descriptor.path(), lockFile, error)) continue;
        std::ifstream info(process / "fdinfo" / descriptor.path().filename());
        for (std::string line; std::getline(info, line);)
            if (line.starts_with("lock:")) return true;
    }
    return false;
}

}  // namespace

std::string faultOfLibraryFile(const std::string& path) {
    std::error_code error;
    if (!fs::exists(path, error)) return "is missing.";
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return "may not be read by this user.";
    const uint16_t machine = machineOf(stream);
    if (machine == EM_NONE) return "is no library of this system.";
    std::ifstream own("/proc/self/exe", std::ios::binary);
    if (machine != machineOf(own)) return "is made for another type of machine.";
    return "";
}

std::string missingNeedsOf(const std::string&) {
    return "Install the library that the message names.";
}

LockFolder lockFolder() {
    const std::string ofPackage = "/run/lock/zprusb";
    struct stat status {};
    const bool made = lstat(ofPackage.c_str(), &status) == 0 && status.st_uid == 0 &&
                      status.st_mode == (S_IFDIR | S_ISVTX | 0777);
    const std::string folder = made ? ofPackage : "/dev/shm";
    return {folder, access(folder.c_str(), W_OK | X_OK) == 0};
}

std::vector<UsbDevice> usbPrinters() {
    std::vector<UsbDevice> devices;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/sys/bus/usb/devices", error)) {
        if (lineOf(entry.path() / "idVendor") != "5a2c" || lineOf(entry.path() / "idProduct") != "0012")
            continue;
        const std::string node = "/dev/bus/usb/" + padded3(lineOf(entry.path() / "busnum")) + "/" +
                                 padded3(lineOf(entry.path() / "devnum"));
        devices.push_back({node, access(node.c_str(), R_OK | W_OK) == 0});
    }
    return devices;
}

std::string userOf(const std::string& devicePath) {
    constexpr size_t telling = 40;  // kind and serial; the file's name has no more than safe letters of them
    std::string safe = devicePath.substr(std::min(devicePath.find("vid_"), devicePath.size()), telling);
    std::ranges::replace_if(
        safe, [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c != '_'; }, '_');
    std::error_code error;
    for (const auto& lock : fs::directory_iterator(lockFolder().path, error)) {
        if (lock.path().string().find(safe) == std::string::npos) continue;
        for (const auto& process : fs::directory_iterator("/proc", error))
            if (holds(process.path(), lock.path()))
                return "process " + process.path().filename().string() + " (" +
                       lineOf(process.path() / "comm") + ")";
    }
    return "another program";
}

}  // namespace tool
