#include "system.h"

#include <windows.h>

#include <string>
#include <system_error>

namespace simulator {
namespace {

// The mutex is the number's mark, so its handle stays open.
uint32_t claimNumber() {
    for (uint32_t number = 1;; ++number) {
        const std::wstring name = L"zprusb-simulator-process-" + std::to_wstring(number);
        const HANDLE mark = CreateMutexW(nullptr, FALSE, name.c_str());
        const DWORD error = GetLastError();
        if (mark != nullptr && error != ERROR_ALREADY_EXISTS) return number;
        if (mark != nullptr) {
            CloseHandle(mark);
        } else if (error != ERROR_ACCESS_DENIED) {  // which somebody else's mutex gives
            throw std::system_error(static_cast<int>(error), std::system_category(), "CreateMutex");
        }
    }
}

}  // namespace

std::thread startThread(std::function<void()> body) {
    return std::thread(std::move(body));
}

uint32_t processNumber() {
    static const uint32_t number = claimNumber();
    return number;
}

std::optional<std::filesystem::path> pathFromEnvironment(const char* variable) {
    const std::wstring name(variable, variable + std::char_traits<char>::length(variable));
    std::wstring value(GetEnvironmentVariableW(name.c_str(), nullptr, 0), L'\0');
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
    if (value.empty()) return std::nullopt;
    return value;
}

bool moveToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (MoveFileExW(from.c_str(), to.c_str(), 0)) return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) return false;
    throw std::system_error(static_cast<int>(error), std::system_category(), "MoveFile");
}

void stayLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&stayLoaded), &module);
}

}  // namespace simulator
