#include "control_library.h"

#include <zprusb.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>
#include <string_view>

#include "device/control_library.h"
#include "library_file.h"
#include "platform/named_mutex.h"
#include "system.h"

namespace tool {
namespace {

constexpr uint64_t noDevice = ~uint64_t{0};
constexpr size_t nameCapacity = 1024;
constexpr size_t prefixOfPath = 4;              // left out of the name of the reservation
constexpr uint32_t exchangeMilliseconds = 500;  // a program that only asks something lets go within
constexpr std::string_view kind = "usb#vid_5a2c&pid_0012";

template <class Function>
Function* functionOf(void* library, const char* name) {
    return reinterpret_cast<Function*>(findSymbol(library, name));
}

std::string nameOf(void* library, uint64_t device) {
    const auto read = functionOf<uint32_t(uint64_t, char*)>(library, "SDKUsb_GetDeviceName");
    char name[nameCapacity] = {};
    if (read == nullptr || read(device, name) != 1) return "";
    name[nameCapacity - 1] = '\0';
    return name;
}

}  // namespace

std::string controlLibraryFile() {
    const std::vector<std::string> folders = controlFolders();
    std::filesystem::path file;
    std::error_code ignored;
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        const auto candidate = std::filesystem::path(std::u8string(folder->begin(), folder->end())) /
                               libraryFileName("RQX5820UsbCtrl");
        if (file.empty() || std::filesystem::exists(candidate, ignored)) file = candidate;
    }
    const std::u8string path = file.u8string();
    return {path.begin(), path.end()};
}

std::vector<std::string> functionsLackingIn(void* library) {
    std::vector<std::string> lacking;
#define NAME_OF(member, name) name,
    for (const char* name : {CONTROL_FUNCTIONS(NAME_OF)})
        if (findSymbol(library, name) == nullptr) lacking.emplace_back(name);
#undef NAME_OF
    return lacking;
}

std::string kindOf(void* library) {
    const auto kind = functionOf<const char*()>(library, "zprusb_controlLibraryKind");
    return kind == nullptr ? "the maker's" : kind();
}

std::vector<std::string> interfacesSeenBy(void* library) {
    const auto examine = functionOf<uint32_t(char*, uint32_t)>(library, "zprusbusb_examine");
    if (examine == nullptr) return {};
    std::string text(1 << 16, '\0');
    examine(text.data(), static_cast<uint32_t>(text.size()));
    std::vector<std::string> lines;
    std::istringstream stream(text.c_str());
    for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(0, line.rfind('.')));
    return lines;
}

std::string serialIn(const std::string& path) {
    const size_t start = path.find('#', path.find('#') + 1);
    if (start == std::string::npos) return "";
    return path.substr(start + 1, path.find('#', start + 1) - start - 1);
}

std::string serialOf(uint8_t printer) {
    std::string error;
    void* library = loadLibrary(controlLibraryFile(), error);
    return library == nullptr ? "" : serialIn(nameOf(library, printer));
}

bool Device::isPrinter() const {
    return path.size() > prefixOfPath && std::string_view(path).substr(prefixOfPath).starts_with(kind);
}

std::vector<Device> connectedDevices() {
    std::string error;
    std::vector<Device> devices;
    void* library = loadLibrary(controlLibraryFile(), error);
    if (library == nullptr) return devices;
    const auto open = functionOf<uint64_t(uint32_t)>(library, "SDKUsb_Open");
    const auto close = functionOf<void(uint64_t)>(library, "SDKUsb_Close");
    if (open == nullptr || close == nullptr) return devices;
    for (uint32_t number = 0; number < ZPRUSB_MAX_PRINTERS; ++number) {
        const uint64_t device = open(number);
        if (device == noDevice) continue;
        devices.push_back({device, nameOf(library, device)});
        close(device);
    }
    return devices;
}

Use useOf(const Device& device) {
    platform::NamedMutex* mutex = platform::openNamedMutex(device.path.c_str() + prefixOfPath);
    const platform::MutexWait wait = platform::waitForNamedMutex(mutex, exchangeMilliseconds);
    const bool obtained = wait == platform::MutexWait::obtained || wait == platform::MutexWait::abandoned;
    if (obtained) platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    switch (wait) {
        case platform::MutexWait::obtained:
            return Use::none;
        case platform::MutexWait::abandoned:
            return Use::leftByKilled;
        case platform::MutexWait::timedOut:
            return Use::inUse;
        default:
            return Use::unknown;
    }
}

}  // namespace tool
