#include "local_socket.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "abstract_address.h"
#include "system.h"

namespace simulator {
namespace {

constexpr char addressStart[] = "zprusb-simulator-control-";
constexpr size_t longestMessage = 4 << 20;

AbstractAddress addressOf(uint32_t process) {
    return AbstractAddress(addressStart + std::to_string(process));
}

class Socket {
public:
    explicit Socket(int number) : number_(number) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        if (number_ >= 0) close(number_);
    }

    int get() const { return number_; }
    bool limitTime(time_t seconds) const {
        const timeval limit{seconds, 0};
        return setsockopt(number_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0 &&
               setsockopt(number_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) == 0;
    }
    bool isOfOwnUser() const {
        ucred peer{};
        socklen_t size = sizeof peer;
        return getsockopt(number_, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
    }
    bool send(std::string line) const {
        line += '\n';
        size_t sent = 0;
        while (sent < line.size()) {
            const ssize_t count = ::send(number_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) return false;
            sent += static_cast<size_t>(count);
        }
        return true;
    }
    std::optional<std::string> receiveLine() const {
        std::string line;
        char bytes[4096];
        while (line.size() < longestMessage) {
            const ssize_t count = recv(number_, bytes, sizeof bytes, 0);
            if (count <= 0) return std::nullopt;
            line.append(bytes, static_cast<size_t>(count));
            if (!line.ends_with('\n')) continue;
            line.pop_back();
            return line;
        }
        return std::nullopt;
    }

private:
    const int number_;
};

int makeSocket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

/// For the request of a peer, that it may not hold up those behind it; for an answer of one that is busy.
constexpr time_t requestSeconds = 1, answerSeconds = 30;

/// Is readable when serving has to stop. It is never closed, as whoever stops it may be the last to live.
int bell() {
    static const int number = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    return number;
}

class SocketListener : public Listener {
public:
    explicit SocketListener(int number) : listener_(number) {}

    void serve(const Answering& answer) override {
        while (awaitPeer()) {
            const Socket peer(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
            // Out of descriptors: whoever asks goes on waiting.
            if (peer.get() < 0) std::this_thread::sleep_for(std::chrono::milliseconds(100));
            if (!peer.isOfOwnUser() || !peer.limitTime(requestSeconds)) continue;
            if (const auto request = peer.receiveLine()) peer.send(answer(*request));
        }
    }

private:
    bool awaitPeer() const {
        pollfd ends[] = {{bell(), POLLIN, 0}, {listener_.get(), POLLIN, 0}};
        poll(ends, 2, -1);
        eventfd_t rings = 0;
        return ends[0].revents == 0 || eventfd_read(bell(), &rings) != 0;
    }

    const Socket listener_;
};

}  // namespace

std::unique_ptr<Listener> Listener::open() {
    const int number = makeSocket();
    const AbstractAddress address = addressOf(static_cast<uint32_t>(getpid()));
    auto listener = std::make_unique<SocketListener>(number);
    const bool isGiven =
        number >= 0 && bind(number, address.get(), address.size()) == 0 && listen(number, 8) == 0;
    return isGiven ? std::move(listener) : nullptr;
}

void stopServing() {
    eventfd_write(bell(), 1);
}

std::optional<std::string> askProcess(uint32_t process, const std::string& request) {
    const Socket peer(makeSocket());
    const AbstractAddress address = addressOf(process);
    const bool asked = peer.limitTime(answerSeconds) &&
                       connect(peer.get(), address.get(), address.size()) == 0 && peer.isOfOwnUser() &&
                       peer.send(request);
    return asked ? peer.receiveLine() : std::nullopt;
}

std::vector<uint32_t> simulatingProcesses() {
    std::vector<uint32_t> processes;
    std::ifstream sockets("/proc/net/unix");
    for (std::string line; std::getline(sockets, line);) {
        const std::string start = std::string("@") + addressStart;
        const size_t at = line.find(start);
        uint32_t process = 0;
        if (at == std::string::npos) continue;
        std::from_chars(line.data() + at + start.size(), line.data() + line.size(), process);
        // A child of a process that has ended may have its socket still.
        const bool lives = std::filesystem::exists("/proc/" + std::to_string(process));
        if (lives && askProcess(process, R"({"do": "show"})")) processes.push_back(process);
    }
    std::ranges::sort(processes);
    processes.erase(std::unique(processes.begin(), processes.end()), processes.end());
    return processes;
}

}  // namespace simulator
