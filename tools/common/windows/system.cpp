#include "system.h"

#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h before it.
#include <shellapi.h>

namespace tool {
namespace {

std::string utf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string converted(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, converted.data(), size, nullptr, nullptr);
    converted.pop_back();  // the terminator, which the size counts
    return converted;
}

HANDLE interruption = nullptr;

/// @return false for the second one, which leaves it to the system.
BOOL WINAPI interrupt(DWORD) {
    if (WaitForSingleObject(interruption, 0) == WAIT_OBJECT_0) return FALSE;
    return SetEvent(interruption);
}

}  // namespace

std::vector<std::string> argumentsInUtf8(int, char**) {
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(utf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

void useUtf8Console() {
    SetConsoleOutputCP(CP_UTF8);
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

void noteInterruption() {
    interruption = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(interrupt, TRUE);
}

bool interruptedWithin(std::chrono::milliseconds time) {
    return WaitForSingleObject(interruption, static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}

}  // namespace tool
