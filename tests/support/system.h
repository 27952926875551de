/// What tests need from the system beyond the platform layer.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/pipe.h"
#include "support/bytes.h"

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

/// Whether the process gets down to so many. A thread that has ended may be a moment in the system's books yet,
/// and the system has one or two of its own that come and go.
bool resourcesFallTo(unsigned count);

/// A handle that reads successfully, and nothing.
platform::PipeHandle openNothing();

void closePipeEnd(platform::PipeHandle end);

/// A pipe of the system.
class Pipe {
public:
    /// Either blocking, and full long before a mebibyte; or with much room, each write of which is read alone.
    explicit Pipe(bool keepsPieces = false);
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeReader();
    void closeWriter();

    /// Makes all reads and writes of a pipe that keeps pieces fail, the ones that wait too.
    void hangUp() const;

    std::optional<Bytes> receive(size_t capacity = 65536) const;  ///< Nothing at the end of the pipe.
    Bytes receiveAll() const;                                     ///< To the end, in small pieces.
    bool send(const Bytes& bytes) const;                          ///< Whether all was taken.

    platform::PipeHandle reader = platform::noPipe;
    platform::PipeHandle writer = platform::noPipe;
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
    void closeOutput() { output_.closeReader(); }
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
