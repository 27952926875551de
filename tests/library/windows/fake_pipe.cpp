#include "fake_pipe.h"

#include <windows.h>

#include <atomic>
#include <string>

namespace {

HANDLE asHandle(uint64_t end) {
    return reinterpret_cast<HANDLE>(end);
}
uint64_t asNumber(HANDLE handle) {
    return reinterpret_cast<uint64_t>(handle);
}

/// Both ends' buffers are large, so that a write never waits for the test's thread.
constexpr DWORD bufferSize = 1 << 20;

FakePipe makePair(DWORD testAccess, DWORD libraryAccess, DWORD mode) {
    static std::atomic<int> counter{0};
    const std::string name =
        "\\\\.\\pipe\\zprusb-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++counter);
    const HANDLE test =
        CreateNamedPipeA(name.c_str(), testAccess, mode | PIPE_WAIT, 1, bufferSize, bufferSize, 0, nullptr);
    const HANDLE library = CreateFileA(name.c_str(), libraryAccess, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return {asNumber(library), asNumber(test)};
}

BOOL CALLBACK takeOwnWindow(HWND window, LPARAM found) {
    char windowClass[8] = {};
    DWORD process = 0;
    GetClassNameA(window, windowClass, sizeof windowClass);
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || windowClass != std::string("Static")) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

/// The library's window, once there is one.
HWND ownWindow() {
    HWND window = nullptr;
    while (EnumWindows(takeOwnWindow, reinterpret_cast<LPARAM>(&window)) && window == nullptr) Sleep(1);
    return window;
}

}  // namespace

FakePipe makeRequestPipe() {
    return makePair(PIPE_ACCESS_INBOUND, GENERIC_WRITE, PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE);
}

FakePipe makeAnswerPipe() {
    return makePair(PIPE_ACCESS_OUTBOUND, GENERIC_READ, PIPE_TYPE_BYTE);
}

uint64_t openNothing() {
    return asNumber(CreateFileA("NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

void hangUp(uint64_t testEnd) {
    DisconnectNamedPipe(asHandle(testEnd));
}

void closeEnd(uint64_t end) {
    CloseHandle(asHandle(end));
}

void reportDeviceChange() {
    PostMessageA(ownWindow(), WM_DEVICECHANGE, 7, 0);
}

bool reportOtherDeviceEvent() {
    const HWND window = ownWindow();
    PostMessageA(window, WM_DEVICECHANGE, 0x8000, 0);
    // Sent messages are delivered when the library looks for the next message: the first time it takes the
    // posted one then, the second time it has dealt with that.
    for (int look = 0; look < 2; ++look) SendMessageA(window, WM_NULL, 0, 0);
    return true;
}
