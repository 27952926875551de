#include "printers.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <deque>

#include "comparison.h"
#include "fake_control_library.h"

namespace bench {

namespace {

constexpr uint64_t none = ~uint64_t{0};
constexpr size_t headerSize = 10;
constexpr uint8_t statusSize = 48;

std::deque<Printer> installed;
std::array<bool, ZPRUSB_MAX_PRINTERS> opened{};
const int owner = getpid();  // a child process works with its parent's printers

std::string pathOf(uint64_t number) {
    char path[64];
    std::snprintf(path, sizeof path, "\\\\?\\usb#vid_5a2c&pid_0012#BENCH%d-%03d#{0}", owner,
                  static_cast<int>(number));
    return path;
}

const FakeControlFunctions functions = {
    .open = [](uint32_t number) -> uint64_t {
        if (number >= installed.size()) return none;
        opened[number] = true;
        return number;
    },
    .close = [](uint64_t device) { opened[device] = false; },
    .getDeviceName = [](uint64_t device, char* name) -> uint32_t {
        std::strcpy(name, pathOf(device).c_str());
        return 1;
    },
    .getPipeHandle = [](uint64_t device, uint8_t pipeNumber) -> uint64_t {
        const Printer& printer = installed[device];
        if (pipeNumber != 0) return static_cast<uint64_t>(printer.answers[0]);
        return static_cast<uint64_t>(printer.dataPipe >= 0 ? printer.dataPipe : printer.requests[1]);
    },
    .closePipe = [](uint64_t) {},  // the printer closes them when it goes
    .checkDeviceName = [](uint32_t number) -> uint64_t {
        return number < installed.size() && opened[number] ? number : none;
    },
    .checkDevice = [](uint64_t) -> uint32_t { return 1; },
};

void sendAnswer(int pipe, uint8_t payloadSize) {
    std::array<uint8_t, headerSize + statusSize> answer{};
    answer[0] = 1;  // a normal answer
    answer[8] = payloadSize;
    const size_t size = headerSize + payloadSize;
    require(write(pipe, answer.data(), size) == static_cast<ssize_t>(size), "to prepare an answer");
}

}  // namespace

Printer::Printer() {
    require(pipe2(requests, O_CLOEXEC) == 0, "pipe2");
    require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, answers) == 0, "socketpair");
}

Printer::~Printer() {
    for (const int end : {requests[0], requests[1], answers[0], answers[1]}) close(end);
}

void Printer::prepareStatus() const {
    sendAnswer(answers[1], statusSize);
}

void Printer::prepareAcknowledgement() const {
    sendAnswer(answers[1], 0);
}

void Printer::forgetRequests() const {
    std::array<uint8_t, 65536> sink;
    require(read(requests[0], sink.data(), sink.size()) > 0, "to read the requests");
}

Printers::Printers(size_t count) {
    installed.resize(count);
    fakeControlInstall(&functions);
}

Printers::~Printers() {
    installed.clear();
}

Printer& Printers::operator[](size_t number) {
    return installed[number];
}

size_t Printers::count() const {
    return installed.size();
}

OpenLibrary::OpenLibrary() {
    require(zprusb_open(nullptr) == 1, "zprusb_open");
}

}  // namespace bench
