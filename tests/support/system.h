/// What tests need from the system beyond the platform layer.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/pipe.h"

namespace test {

/// The file of the running test program.
std::filesystem::path ownProgram();

/// The file name that a library of this name has.
std::string libraryFile(const std::string& name);

/// @return null when it can't be loaded.
void* openLibrary(const std::filesystem::path& file);

bool isLoaded(const std::filesystem::path& library);

/// How many files, sockets, windows' handles or threads the process has.
unsigned resourceCount();

/// A named mutex outlives the test on some systems.
void removeMutex(const std::string& name);

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

/// A second process, which the test talks to over its standard input and output.
class ChildProcess {
public:
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
    ~ChildProcess();  ///< Kills it if need be.
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    std::string readLine();  ///< Without the line's end; empty when the child has ended.
    void closeInput() { input_.closeWriter(); }
    void kill();
    bool endedWell();  ///< Waits for the end.

private:
    Pipe input_;
    Pipe output_;
    uint64_t process_ = 0;
};

}  // namespace test
