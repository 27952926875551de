#include "control_folder.h"

#include <windows.h>
#include <filesystem>

namespace tool {

/// Programs and libraries lie in one folder here.
std::vector<std::string> chooseControlFolder() {
    std::wstring file(32768, L'\0');
    file.resize(GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size())));
    const std::u8string folder = std::filesystem::path(file).parent_path().u8string();
    return {{folder.begin(), folder.end()}};
}

}  // namespace tool
