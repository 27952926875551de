#include "system.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>

namespace tool {
namespace {

int interruptions[2] = {-1, -1};  // a pipe with a byte in it once there was one

void interrupt(int) {
    [[maybe_unused]] const ssize_t written = write(interruptions[1], "", 1);
}

}  // namespace

std::vector<std::string> argumentsInUtf8(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

std::string pathForLibrary(const std::string& utf8) {
    return utf8;
}

void prepareOutput() {
    signal(SIGPIPE, SIG_IGN);
    // A stream that the caller has closed must not become the first file that is opened, such as a lock file.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void makeInputBinary() {}

bool isTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) == 1;
}

void noteInterruption() {
    if (pipe2(interruptions, O_CLOEXEC) != 0) return;
    struct sigaction action {};
    action.sa_handler = interrupt;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
}

bool interruptedWithin(std::chrono::milliseconds time) {
    pollfd reader{interruptions[0], POLLIN, 0};
    return poll(&reader, 1, static_cast<int>(time.count())) == 1;
}

}  // namespace tool
