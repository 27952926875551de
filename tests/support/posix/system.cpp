#include "support/system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace test {

namespace fs = std::filesystem;

namespace {

auto entriesOf(const char* folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

}  // namespace

fs::path ownProgram() {
    return fs::read_symlink("/proc/self/exe");
}

std::string libraryFile(const std::string& name) {
    return "lib" + name + ".so";
}

std::string programFile(const std::string& name) {
    return name;
}

void setEnvironment(const char* name, const fs::path& value) {
    setenv(name, value.c_str(), 1);
}

void* openLibrary(const fs::path& file) {
    return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

bool isLoaded(const fs::path& library) {
    void* loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
}

unsigned resourceCount() {
    return static_cast<unsigned>(entriesOf("/proc/self/fd") + entriesOf("/proc/self/task"));
}

platform::PipeHandle openNothing() {
    return static_cast<uint64_t>(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

Pipe::Pipe(bool keepsPieces) {
    int ends[2];
    const int result =
        keepsPieces ? socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) : pipe2(ends, O_CLOEXEC);
    if (result != 0) throw std::runtime_error("no pipe");
    reader = static_cast<uint64_t>(ends[0]);
    writer = static_cast<uint64_t>(ends[1]);
}

void Pipe::hangUp() const {
    shutdown(static_cast<int>(reader), SHUT_RDWR);
}

void closePipeEnd(platform::PipeHandle end) {
    close(static_cast<int>(end));
}

ChildProcess::ChildProcess(const fs::path& program, const std::vector<std::string>& arguments,
                           const Surroundings& surroundings) {
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, static_cast<int>(input_.reader), 0);
    posix_spawn_file_actions_adddup2(&actions, static_cast<int>(output_.writer), 1);
    if (!surroundings.errors.empty())
        posix_spawn_file_actions_addopen(&actions, 2, surroundings.errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0600);
    if (!surroundings.folder.empty())
        posix_spawn_file_actions_addchdir_np(&actions, surroundings.folder.c_str());
    pid_t process = 0;
    const int error = posix_spawn(&process, program.c_str(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("no child process");
    process_ = static_cast<uint64_t>(process);
    input_.closeReader();
    output_.closeWriter();
}

void ChildProcess::kill() {
    ::kill(static_cast<pid_t>(process_), SIGKILL);
    exitStatus();
}

bool ChildProcess::interrupt() {
    return ::kill(static_cast<pid_t>(process_), SIGINT) == 0;
}

int ChildProcess::exitStatus() {
    int status = -1;
    waitpid(static_cast<pid_t>(process_), &status, 0);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace test
