// An emulated USB printer: the simulator behind one bulk endpoint each way, for QEMU's usb-redir device.
// Usage: usb_printer SOCKET SIMULATOR.so printer|vendor high|full SERIAL
// Commands, one a line on standard input: unplug, plug, stall-request, stall-answer.
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>

#include "wire.h"

namespace {

using namespace usb_test;

class Printer {
public:
    Printer(const char* socket, const char* simulator, const Kind& kind)
        : socket_(socket), simulated_(simulator), wire_(kind, simulated_) {}

    /// Until QEMU has ended.
    void run() {
        do {
            followPlug();
        } while (turn());
    }

private:
    void followPlug() {
        if (isPlugged_ && !simulated_.isStarted()) simulated_.start();
        const bool isPresent = isPlugged_ && simulated_.isStarted();
        if (isPresent && !wire_.isPlugged()) wire_.plug(socket_);
        if (!isPresent) wire_.unplug();
        if (!isPlugged_) simulated_.stop();
    }

    bool turn() {
        if (wire_.isPlugged() && !wire_.move()) return false;
        const bool isPlugged = wire_.isPlugged();
        const short linkEvents = isPlugged && wire_.wantsToSend() ? POLLIN | POLLOUT : POLLIN;
        pollfd polled[] = {{hasCommands_ ? STDIN_FILENO : -1, POLLIN, 0},
                           {wire_.link(), linkEvents, 0},
                           {isPlugged && wire_.wantsAnswer() ? simulated_.answers() : -1, POLLIN, 0},
                           {isPlugged && wire_.hasRequests() ? simulated_.requests() : -1, POLLOUT, 0}};
        poll(polled, 4, isPlugged ? -1 : 100);
        if (polled[0].revents != 0) readCommand();
        if (polled[1].revents != 0 && !wire_.receive()) return false;
        const bool isBroken = (polled[3].revents & POLLERR) != 0;
        if (isBroken || (polled[2].revents != 0 && simulated_.isStarted() && !wire_.takeAnswer())) {
            wire_.unplug();
            simulated_.stop();
        }
        return true;
    }

    // They come letter by letter from the guest's serial line.
    void readCommand() {
        char letter;
        hasCommands_ = read(STDIN_FILENO, &letter, 1) == 1;
        if (!hasCommands_ || letter == '\r') return;
        if (letter != '\n') {
            line_ += letter;
            return;
        }
        if (line_ == "unplug") isPlugged_ = false;
        if (line_ == "plug") isPlugged_ = true;
        if (line_ == "stall-request") wire_.stall(outEndpoint);
        if (line_ == "stall-answer") wire_.stall(inEndpoint);
        line_.clear();
    }

    const std::string socket_;
    SimulatedEnd simulated_;
    Wire wire_;
    std::string line_;
    bool isPlugged_ = true;
    bool hasCommands_ = true;
};

}  // namespace

int main(int count, char** words) {
    if (count != 6) return 2;
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Printer(words[1], words[2],
                {std::string(words[3]) == "printer", std::string(words[4]) == "full", words[5]})
            .run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "usb_printer: %s\n", error.what());
        return 1;
    }
    return 0;
}
