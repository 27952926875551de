#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

#include "places.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

/// The start of a library's file; of none, its type is none.
Elf64_Ehdr headerOf(std::ifstream& stream) {
    Elf64_Ehdr header{};
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) header.e_type = ET_NONE;
    return header;
}

/// The loader does not look, and the process is killed by what is missing.
bool isCutOff(std::ifstream& stream, const Elf64_Ehdr& header, uint64_t size) {
    stream.seekg(static_cast<std::streamoff>(header.e_phoff));
    Elf64_Phdr segment{};
    for (int i = 0; i < header.e_phnum; ++i) {
        if (!stream.read(reinterpret_cast<char*>(&segment), sizeof segment)) return true;
        if (segment.p_offset + segment.p_filesz > size) return true;
    }
    return false;
}

std::string machineName() {
    utsname system{};
    uname(&system);
    return system.machine;
}

std::string lineOf(const fs::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

constexpr mode_t sharedByAll = S_ISVTX | 0777;
constexpr const char* ofPackage = "run/lock/zprusb";
constexpr const char* ofSystem = "dev/shm";

/// None when there is no such thing, and of a link itself.
std::optional<struct stat> stateOf(const fs::path& path) {
    struct stat state {};
    return lstat(path.c_str(), &state) == 0 ? std::optional(state) : std::nullopt;
}

bool isSharedByAll(const struct stat& state) {
    return S_ISDIR(state.st_mode) && (state.st_mode & 07777) == sharedByAll;
}

/// Whether the library takes the package's folder.
bool isTrusted(const struct stat& state) {
    return isSharedByAll(state) && state.st_uid == 0;
}

bool isFull(const fs::path& folder) {
    struct statvfs space {};
    return statvfs(folder.c_str(), &space) == 0 &&
           (space.f_bavail == 0 || (space.f_files > 0 && space.f_favail == 0));
}

Sight folderInUse(const fs::path& folder) {
    const std::string name = folder.string();
    const auto state = stateOf(folder);
    if (!state) return {name + " is missing", "Make it, with 'mkdir -m 1777 " + name + "' as root."};
    if (!S_ISDIR(state->st_mode))
        return {name + " is no folder", "Make a folder of mode 1777 in its place, as root."};
    if (!isSharedByAll(*state))
        return {name + " can't be written by all users", "Let root do 'chmod 1777 " + name + "'."};
    if (isFull(folder)) return {name + " is full", "Free some space in it."};
    return {name};
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

Sight fileOfControlLibrary(const std::string& path) {
    std::error_code error;
    const std::string install = "Put the control library of this machine's type, " + machineName() + ", there.";
    if (!fs::exists(path, error)) return {path + " is missing", install};
    if (fs::is_directory(path, error)) return {path + " is a folder", install};
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return {path + " may not be read by this user", "Let its owner do 'chmod a+r' on it."};
    const Elf64_Ehdr header = headerOf(stream);
    if (header.e_type == ET_NONE) return {path + " is no library of this system", install};
    std::ifstream own("/proc/self/exe", std::ios::binary);
    if (header.e_machine != headerOf(own).e_machine)
        return {path + " is made for another type of machine", install};
    if (isCutOff(stream, header, fs::file_size(path, error))) return {path + " is cut off", install};
    return {path};
}

Sight loadingFailure(const std::string& path, const std::string& error) {
    // The loader's words are 'FILE: what is wrong', where FILE is the one that it did not find.
    const std::string file = error.substr(0, error.find(": "));
    if (error.find("cannot open shared object file") != std::string::npos && file != path)
        return {path + " needs " + file + ", which is missing",
                "Install the package that has " + file + ", or put it where the system looks for libraries."};
    if (error.find("undefined symbol") != std::string::npos)
        return {path + " needs a function that is missing: " + error,
                "Install the libraries that it was made with."};
    if (error.find("version `") != std::string::npos)
        return {path + " is made for a newer system: " + error, "Install the control library for this system."};
    return {path + " can't be loaded: " + error, "Install it anew; the file may be damaged."};
}

std::vector<Sight> lockFoldersBelow(const fs::path& root) {
    std::vector<Sight> sights;
    const auto state = stateOf(root / ofPackage);
    if (state && isTrusted(*state)) return {folderInUse(root / ofPackage)};
    if (state)
        sights.push_back(
            {(root / ofPackage).string() +
                 " is not used: it is no folder of root's with mode 1777, and logouts may clear the "
                 "other one",
             "Let root make it anew, with 'systemd-tmpfiles --create'."});
    sights.push_back(folderInUse(root / ofSystem));
    return sights;
}

std::vector<Sight> usbDevicesBelow(const fs::path& root) {
    std::vector<Sight> sights;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(root / "sys/bus/usb/devices", error)) {
        if (lineOf(entry.path() / "idVendor") != "5a2c" || lineOf(entry.path() / "idProduct") != "0012")
            continue;
        const fs::path node = root / "dev/bus/usb" / padded3(lineOf(entry.path() / "busnum")) /
                              padded3(lineOf(entry.path() / "devnum"));
        if (faccessat(AT_FDCWD, node.c_str(), R_OK | W_OK, AT_EACCESS) == 0) {
            sights.push_back({node.string()});
        } else if (errno == ENOENT) {
            sights.push_back({node.string() + " is missing, though the device is connected",
                              "Give the container or chroot the folder /dev/bus/usb."});
        } else {
            sights.push_back({node.string() + " may not be opened by this user",
                              "Give this user the right to read and write it, for example with a udev rule."});
        }
    }
    return sights;
}

std::vector<Sight> lockFolders() {
    return lockFoldersBelow("/");
}

std::vector<Sight> usbDevices() {
    return usbDevicesBelow("/");
}

std::string userOf(const std::string& devicePath) {
    constexpr size_t telling = 40;  // kind and serial; the file's name has no more than safe letters of them
    std::string safe = devicePath.substr(std::min(devicePath.find("vid_"), devicePath.size()), telling);
    std::ranges::replace_if(
        safe, [](unsigned char c) { return std::isalnum(c) == 0 && c != '-' && c != '_'; }, '_');
    std::error_code error;
    const auto state = stateOf(fs::path("/") / ofPackage);
    const fs::path folder = fs::path("/") / (state && isTrusted(*state) ? ofPackage : ofSystem);
    for (const auto& lock : fs::directory_iterator(folder, error)) {
        if (lock.path().string().find(safe) == std::string::npos) continue;
        for (const auto& process : fs::directory_iterator("/proc", error))
            if (holds(process.path(), lock.path()))
                return "process " + process.path().filename().string() + " (" +
                       lineOf(process.path() / "comm") + ")";
    }
    return "another program";
}

}  // namespace tool
