// A control library with one printer that is always ready, answers with fixed bytes and drops what it prints.
#include <array>
#include <cstring>
#include <thread>

#include "page_reader.h"

namespace {

constexpr uint64_t none = ~uint64_t{0};
constexpr uint64_t onlyDevice = 0;
constexpr char deviceName[] = R"(\\?\usb#vid_5a2c&pid_0012#BENCHMARK#{0})";

constexpr uint8_t commandPrint = 1, classAction = 0x40;
constexpr uint8_t commandGetMediaInfo = 2, classQuery = 0x00;
constexpr size_t statusSize = 48;
constexpr size_t mediaSize = 31;

struct Printer {
    int requests[2];  // reading end, writing end
    int answers[2];
    std::thread thread;
};
Printer* printer = nullptr;

void answer(uint8_t* bytes, size_t payloadSize) {
    bytes[0] = 1;  // a normal answer
    bytes[8] = static_cast<uint8_t>(payloadSize);
    if (write(printer->answers[1], bytes, 10 + payloadSize) < 0) _exit(1);
}

void answerMedia() {
    std::array<uint8_t, 10 + mediaSize> bytes{};
    uint8_t* entry = bytes.data() + 11;
    bytes[10] = 1;
    entry[0] = 0xF1;
    std::memcpy(entry + 1, &bench::pageWidth, 4);
    std::memcpy(entry + 5, &bench::pageLength, 4);
    answer(bytes.data(), mediaSize);
}

void answerPlainly(size_t payloadSize) {
    std::array<uint8_t, 10 + statusSize> bytes{};
    answer(bytes.data(), payloadSize);
}

/// Serves requests until the library closes the device.
void serve() {
    std::array<uint8_t, 4> frame;
    while (read(printer->requests[0], frame.data(), frame.size()) == static_cast<ssize_t>(frame.size())) {
        const size_t payloadSize = frame[2] + size_t{frame[3]} * 256;
        if (!bench::drain(printer->requests[0], payloadSize)) return;
        if (frame[0] == commandGetMediaInfo && frame[1] == classQuery) {
            answerMedia();
        } else if (frame[0] == commandPrint && frame[1] == classAction) {
            answerPlainly(0);
            if (!bench::drain(printer->requests[0], bench::pageSize)) return;
        } else {
            answerPlainly(statusSize);
        }
    }
}

}  // namespace

extern "C" {

uint64_t SDKUsb_CheckDeviceName(uint32_t number) {
    return number == onlyDevice && printer ? onlyDevice : none;
}

uint64_t SDKUsb_Open(uint32_t number) {
    if (number != onlyDevice || printer) return none;
    printer = new Printer;
    if (pipe(printer->requests) != 0 || pipe(printer->answers) != 0) return none;
    printer->thread = std::thread(serve);
    return onlyDevice;
}

void SDKUsb_Close(uint64_t) {
    close(printer->requests[1]);
    printer->thread.join();
    close(printer->requests[0]);
    close(printer->answers[0]);
    close(printer->answers[1]);
    delete printer;
    printer = nullptr;
}

uint32_t SDKUsb_GetDeviceName(uint64_t, char* name) {
    std::memcpy(name, deviceName, sizeof deviceName);
    return 1;
}

uint64_t SDKUsb_GetPipeHandle(uint64_t, uint32_t, uint8_t number, uint32_t) {
    return static_cast<uint64_t>(number == 0 ? printer->requests[1] : printer->answers[0]);
}

uint32_t SDKUsb_CheckDevice(uint64_t) {
    return 1;
}

void SDKUsb_ClosePipe(uint64_t) {}  // the end of the device closes them

// The library looks these up and never calls them.
void SDKUsb_OpenEx() {}
void SDKUsb_GetDeviceHandle() {}
void SDKUsb_AbortPipe() {}
void SDKUsb_ResetPipe() {}
void SDKUsb_ResetDevice() {}
void SDKUsb_GetDeviceIDString() {}
}
