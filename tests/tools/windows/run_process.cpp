#include "run_process.h"

#include <windows.h>

namespace test {
namespace {

class File {
public:
    File(const wchar_t* path, DWORD access, DWORD disposition) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        handle_ = CreateFileW(path, access, FILE_SHARE_READ, &inherited, disposition, 0, nullptr);
    }
    ~File() { CloseHandle(handle_); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    HANDLE handle() const { return handle_; }

private:
    HANDLE handle_;
};

std::wstring commandLine(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    std::wstring line = L'"' + program.native() + L'"';
    for (const std::string& argument : arguments)
        line += L" \"" + std::filesystem::path(std::u8string(argument.begin(), argument.end())).native() + L'"';
    return line;
}

int statusOf(const PROCESS_INFORMATION& process) {
    DWORD status = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    const bool known = GetExitCodeProcess(process.hProcess, &status) != 0;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return known ? static_cast<int>(status) : -1;
}

}  // namespace

std::string programName(const std::string& name) {
    return name + ".exe";
}

void setEnvironment(const char* name, const std::filesystem::path& value) {
    SetEnvironmentVariableW(std::filesystem::path(name).c_str(), value.c_str());
}

int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& workingFolder, const std::filesystem::path& out,
               const std::filesystem::path& err) {
    const File input(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const File output(out.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    const File errors(err.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.handle();
    start.hStdOutput = output.handle();
    start.hStdError = errors.handle();
    PROCESS_INFORMATION process{};
    std::wstring line = commandLine(program, arguments);
    const BOOL started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        workingFolder.c_str(), &start, &process);
    return started ? statusOf(process) : -1;
}

}  // namespace test
