#include "surroundings.h"

#include <windows.h>

#include <setupapi.h>
#include <tlhelp32.h>  // both need the header above

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* install = "Put the control library for Windows on this machine's type, x86_64, there.";

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

std::string utf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// The start of a library's file; none of a file that is no library. The stream stands behind it.
std::optional<IMAGE_FILE_HEADER> headerOf(std::ifstream& stream) {
    IMAGE_DOS_HEADER start{};
    DWORD signature = 0;
    IMAGE_FILE_HEADER header{};
    stream.read(reinterpret_cast<char*>(&start), sizeof start);
    if (start.e_magic != IMAGE_DOS_SIGNATURE) return std::nullopt;
    stream.seekg(start.e_lfanew);
    stream.read(reinterpret_cast<char*>(&signature), sizeof signature);
    if (signature != IMAGE_NT_SIGNATURE) return std::nullopt;
    stream.read(reinterpret_cast<char*>(&header), sizeof header);
    return header;
}

bool isCutOff(std::ifstream& stream, const IMAGE_FILE_HEADER& header, uint64_t size) {
    stream.seekg(header.SizeOfOptionalHeader, std::ios::cur);
    IMAGE_SECTION_HEADER section{};
    for (WORD i = 0; i < header.NumberOfSections; ++i) {
        if (!stream.read(reinterpret_cast<char*>(&section), sizeof section)) return true;
        if (uint64_t{section.PointerToRawData} + section.SizeOfRawData > size) return true;
    }
    return false;
}

/// A library's image in memory, laid out as when it runs, without what it needs.
class Image {
public:
    explicit Image(const fs::path& file)
        : module_(LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE)),
          // The system marks in the last bits how it was loaded.
          base_(reinterpret_cast<const char*>(reinterpret_cast<uintptr_t>(module_) & ~uintptr_t{3})) {}
    ~Image() {
        if (module_ != nullptr) FreeLibrary(module_);
    }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    /// The names of the libraries that it needs.
    std::vector<std::string> needs() const {
        std::vector<std::string> names;
        if (module_ == nullptr) return names;
        const auto& header = *at<IMAGE_NT_HEADERS64>(at<IMAGE_DOS_HEADER>(0)->e_lfanew);
        const auto& table = header.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        const DWORD end = header.OptionalHeader.SizeOfImage;
        for (DWORD place = table.VirtualAddress; place != 0 && place + sizeof(IMAGE_IMPORT_DESCRIPTOR) <= end;
             place += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
            const DWORD name = at<IMAGE_IMPORT_DESCRIPTOR>(place)->Name;
            if (name == 0 || name >= end) break;
            names.emplace_back(at<char>(name), strnlen(at<char>(name), std::min<size_t>(end - name, MAX_PATH)));
        }
        return names;
    }

private:
    template <class Content>
    const Content* at(size_t offset) const {
        return reinterpret_cast<const Content*>(base_ + offset);
    }

    const HMODULE module_;
    const char* const base_;
};

bool systemHas(const std::string& library) {
    const HMODULE found = LoadLibraryExW(pathOf(library).c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (found != nullptr) FreeLibrary(found);
    return found != nullptr;
}

/// Adds what a library needs and the system does not find, and the same of those beside it.
void addMissingNeeds(const fs::path& library, std::vector<std::string>& seen,
                     std::vector<std::string>& missing) {
    for (const std::string& name : Image(library).needs()) {
        if (std::ranges::find(seen, name) != seen.end()) continue;
        seen.push_back(name);
        const fs::path beside = library.parent_path() / pathOf(name);
        if (fs::exists(beside)) {
            addMissingNeeds(beside, seen, missing);
        } else if (!systemHas(name)) {
            missing.push_back(name);
        }
    }
}

bool hasLoaded(DWORD process, const wchar_t* library) {
    const HANDLE modules = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process);
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof entry;
    bool found = false;
    for (BOOL more = Module32FirstW(modules, &entry); more && !found; more = Module32NextW(modules, &entry))
        found = _wcsicmp(entry.szModule, library) == 0;
    CloseHandle(modules);
    return found;
}

}  // namespace

Sight fileOfControlLibrary(const std::string& path) {
    const fs::path file = pathOf(path);
    std::error_code error;
    if (!fs::exists(file, error)) return {path + " is missing", install};
    if (fs::is_directory(file, error)) return {path + " is a folder", install};
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return {path + " may not be read by this user", "Let its owner give this user the right to read it."};
    const auto header = headerOf(stream);
    if (!header) return {path + " is no library of this system", install};
    if (header->Machine != IMAGE_FILE_MACHINE_AMD64)
        return {path + " is made for another type of machine", install};
    if (isCutOff(stream, *header, fs::file_size(file, error))) return {path + " is cut off", install};
    return {path};
}

Sight loadingFailure(const std::string& path, const std::string& error) {
    std::vector<std::string> seen, missing;
    addMissingNeeds(pathOf(path), seen, missing);
    if (missing.empty())
        return {path + " can't be loaded: " + error, "Install it anew; the file may be damaged."};
    std::string names;
    for (const std::string& name : missing) names += (names.empty() ? "" : ", ") + name;
    return {path + " needs " + names + ", which is missing",
            "Put " + names + " beside it; it came with the library."};
}

/// Reservations are no files here.
std::vector<Sight> lockFolders() {
    return {};
}

std::vector<Sight> usbDevices() {
    std::vector<Sight> sights;
    const HDEVINFO all = SetupDiGetClassDevsW(nullptr, L"USB", nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(all, i, &device); ++i) {
        wchar_t name[MAX_PATH] = L"";
        BYTE service[512];
        SetupDiGetDeviceInstanceIdW(all, &device, name, MAX_PATH, nullptr);
        if (_wcsnicmp(name, L"USB\\VID_5A2C&PID_0012", 21) != 0) continue;
        const bool hasDriver = SetupDiGetDeviceRegistryPropertyW(all, &device, SPDRP_SERVICE, nullptr, service,
                                                                 sizeof service, nullptr) != 0;
        if (hasDriver) {
            sights.push_back({utf8(name)});
        } else {
            sights.push_back({utf8(name) + " has no driver", "Install the driver of the printer's maker."});
        }
    }
    SetupDiDestroyDeviceInfoList(all);
    return sights;
}

/// The system doesn't tell; but who has reserved a printer has loaded the control library.
std::string userOf(const std::string&) {
    std::string users;
    const HANDLE processes = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(processes, &entry); more; more = Process32NextW(processes, &entry)) {
        const DWORD process = entry.th32ProcessID;
        if (process == GetCurrentProcessId() || !hasLoaded(process, L"RQX5820UsbCtrl.dll")) continue;
        users += (users.empty() ? "process " : " or process ") + std::to_string(process) + " (" +
                 utf8(entry.szExeFile) + ")";
    }
    CloseHandle(processes);
    return users.empty() ? "another program" : users;
}

}  // namespace tool
