#include "run_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace test {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int statusOf(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace

std::string programName(const std::string& name) {
    return name;
}

void setEnvironment(const char* name, const std::filesystem::path& value) {
    setenv(name, value.c_str(), 1);
}

int runProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
               const std::filesystem::path& workingFolder, const std::filesystem::path& out,
               const std::filesystem::path& err) {
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), create, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), create, 0600);
    posix_spawn_file_actions_addchdir_np(&actions, workingFolder.c_str());
    pid_t child = 0;
    const int error =
        posix_spawn(&child, program.c_str(), &actions, nullptr, pointersTo(words).data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? statusOf(child) : -1;
}

}  // namespace test
