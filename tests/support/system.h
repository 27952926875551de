/// What tests need from the system beyond the platform layer.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/pipe.h"

namespace test {

/// The file of the running test program.
std::filesystem::path ownProgram();

/// The file name that a library or a program of this name has.
std::string libraryFile(const std::string& name);
std::string programFile(const std::string& name);

/// For this process and all that it starts from now on.
void setEnvironment(const char* name, const std::filesystem::path& value);

/// @return null when it can't be loaded.
void* openLibrary(const std::filesystem::path& file);

bool isLoaded(const std::filesystem::path& library);

/// How many files, sockets, windows' handles or threads the process has.
unsigned resourceCount();

/// What a named mutex leaves behind: some systems keep it in a file.
std::vector<std::filesystem::path> mutexFiles(const std::string& name);

/// @return how many were left.
unsigned removeMutex(const std::string& name);

/// A pipe of the system. Blocking, and full long before a mebibyte.
class Pipe {
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeReader() { closeEnd(reader); }
    void closeWriter() { closeEnd(writer); }

    platform::PipeHandle reader = platform::noPipe;
    platform::PipeHandle writer = platform::noPipe;

private:
    static void closeEnd(platform::PipeHandle& end);
};

/// Where a process runs, as far as it isn't where the test runs.
struct Surroundings {
    std::filesystem::path folder;
    std::filesystem::path errors;  // the file that receives its standard error
};

/// A second process, which the test talks to over its standard input and output.
class ChildProcess {
public:
    /// @param arguments in UTF-8, without quotation marks in them.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const Surroundings& surroundings = {});
    ~ChildProcess();  ///< Kills it if need be.
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    std::string readLine();  ///< Without the line's end; empty when the child has ended.
    std::string readAll();   ///< To the end, without carriage returns.
    void closeInput() { input_.closeWriter(); }
    bool interrupt();  ///< As Ctrl-C or Ctrl-Break does; false where there is no console to do it on.
    void kill();
    int exitStatus();  ///< Waits for the end; -1 when it was another one than an exit.
    bool endedWell() { return exitStatus() == 0; }

private:
    Pipe input_;
    Pipe output_;
    uint64_t process_ = 0;
};

}  // namespace test
