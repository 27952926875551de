#include "../../../src/platform/windows/system.h"

#include <atomic>
#include <stdexcept>

#include "support/system.h"

namespace test {

namespace fs = std::filesystem;

namespace {

HANDLE handleOf(uint64_t value) {
    return reinterpret_cast<HANDLE>(value);
}

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

void makeInheritable(uint64_t handle) {
    SetHandleInformation(handleOf(handle), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
}

}  // namespace

fs::path ownProgram() {
    wchar_t path[4096];
    return fs::path(path, path + GetModuleFileNameW(nullptr, path, 4096));
}

std::string libraryFile(const std::string& name) {
    return name + ".dll";
}

std::string programFile(const std::string& name) {
    return name + ".exe";
}

void setEnvironment(const char* name, const fs::path& value) {
    SetEnvironmentVariableW(fs::path(name).c_str(), value.c_str());
}

void* openLibrary(const fs::path& file) {
    return LoadLibraryW(file.c_str());
}

bool isLoaded(const fs::path& library) {
    return GetModuleHandleW(library.c_str()) != nullptr;
}

// One by one, since Wine doesn't tell the number.
unsigned resourceCount() {
    unsigned count = 0;
    for (uint64_t handle = 4; handle < 0x4000; handle += 4) {
        DWORD flags;
        if (GetHandleInformation(handleOf(handle), &flags)) ++count;
    }
    return count;
}

platform::PipeHandle openNothing() {
    return reinterpret_cast<uint64_t>(CreateFileA("NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

Pipe::Pipe(bool keepsPieces) {
    static std::atomic<int> counter{0};
    const std::string name =
        "\\\\.\\pipe\\zprusb-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++counter);
    const DWORD size = keepsPieces ? 1 << 20 : 4096;
    const DWORD mode = keepsPieces ? PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE : PIPE_TYPE_BYTE;
    reader = reinterpret_cast<uint64_t>(
        CreateNamedPipeA(name.c_str(), PIPE_ACCESS_INBOUND, mode, 1, size, size, 0, nullptr));
    writer = reinterpret_cast<uint64_t>(
        CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (handleOf(writer) == INVALID_HANDLE_VALUE) throw std::runtime_error("no pipe");
}

void Pipe::hangUp() const {
    DisconnectNamedPipe(handleOf(reader));
}

void closePipeEnd(platform::PipeHandle end) {
    CloseHandle(handleOf(end));
}

ChildProcess::ChildProcess(const fs::path& program, const std::vector<std::string>& arguments,
                           const Surroundings& surroundings) {
    std::wstring line = L'"' + program.wstring() + L'"';
    for (const std::string& argument : arguments) line += L" \"" + pathOf(argument).wstring() + L'"';
    makeInheritable(input_.reader);
    makeInheritable(output_.writer);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = handleOf(input_.reader);
    start.hStdOutput = handleOf(output_.writer);
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const bool ownErrors = !surroundings.errors.empty();
    start.hStdError = ownErrors ? CreateFileW(surroundings.errors.c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                              &inherited, CREATE_ALWAYS, 0, nullptr)
                                : GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process;
    // Only a group of its own can be interrupted without interrupting the test.
    const auto create = [&] {
        return CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP, nullptr,
                              surroundings.folder.empty() ? nullptr : surroundings.folder.c_str(), &start,
                              &process);
    };
    BOOL started = create();
    for (int again = 0; !started && again < 5; ++again) {  // Wine refuses one now and then
        Sleep(200);
        started = create();
    }
    const DWORD error = GetLastError();
    if (ownErrors) CloseHandle(start.hStdError);
    if (!started) throw std::runtime_error("no child process: error " + std::to_string(error));
    CloseHandle(process.hThread);
    process_ = reinterpret_cast<uint64_t>(process.hProcess);
    input_.closeReader();
    output_.closeWriter();
}

void ChildProcess::kill() {
    TerminateProcess(handleOf(process_), 1);
    exitStatus();
}

bool ChildProcess::interrupt() {
    return GetConsoleWindow() != nullptr &&
           GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, GetProcessId(handleOf(process_))) != 0;
}

int ChildProcess::exitStatus() {
    DWORD code = 1;
    WaitForSingleObject(handleOf(process_), INFINITE);
    GetExitCodeProcess(handleOf(process_), &code);
    CloseHandle(handleOf(process_));
    process_ = 0;
    return static_cast<int>(code);
}

}  // namespace test
