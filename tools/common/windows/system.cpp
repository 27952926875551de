#include "system.h"
#include "library_file.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// shellapi.h needs windows.h before it.
#include <shellapi.h>

#include <optional>

#include "failure.h"

namespace tool {
namespace {

std::wstring wide(const std::string& utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring converted(utf8.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, converted.data(), size);
    converted.resize(static_cast<size_t>(length));
    return converted;
}

/// Nothing when a character has no place in the legacy encoding.
std::optional<std::string> legacy(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    std::string converted(3 * text.size(), '\0');
    BOOL lost = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), length, converted.data(),
                                         static_cast<int>(converted.size()), nullptr, &lost);
    converted.resize(static_cast<size_t>(size));
    return lost ? std::nullopt : std::optional(converted);
}

/// The name of 8 and 3 characters that the system gives a file beside its own.
std::wstring shortName(const std::wstring& path) {
    wchar_t name[MAX_PATH] = L"";
    const DWORD length = GetShortPathNameW(path.c_str(), name, MAX_PATH);
    return length < MAX_PATH ? std::wstring(name, length) : path;
}

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

std::string pathForLibrary(const std::string& utf8) {
    const std::wstring path = wide(utf8);
    if (const auto whole = legacy(path)) return *whole;
    if (const auto abbreviated = legacy(shortName(path))) return *abbreviated;
    throw UnusableFile("'" + utf8 + "' has characters that the library can't open; rename the file.");
}

void prepareOutput() {
    SetConsoleOutputCP(CP_UTF8);
}

std::string fileOfLibrary() {
    std::wstring file(32768, L'\0');
    const DWORD length = GetModuleFileNameW(GetModuleHandleW(L"RQX5820usb.dll"), file.data(), 32768);
    file.resize(length);
    return utf8(file.c_str());
}

std::vector<std::string> controlFolders() {
    const std::string file = fileOfLibrary();
    return {file.substr(0, file.find_last_of('\\'))};
}

std::string libraryFileName(const std::string& name) {
    return name + ".dll";
}

void* loadLibrary(const std::string& path, std::string& error) {
    const HMODULE library = LoadLibraryExW(wide(path).c_str(), nullptr,
                                           LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (library == nullptr) error = "Windows error " + std::to_string(GetLastError());
    return library;
}

void* findSymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void makeInputBinary() {
    _setmode(_fileno(stdin), _O_BINARY);
}

bool isTerminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

void noteInterruption() {
    interruption = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(interrupt, TRUE);
}

bool interruptedWithin(std::chrono::milliseconds time) {
    if (interruption == nullptr) Sleep(static_cast<DWORD>(time.count()));
    return WaitForSingleObject(interruption, static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
}

}  // namespace tool
