#include "platform/message_window.h"

#include "system.h"

namespace platform {

namespace {

// A MessageWindow is the system's window handle and nothing else.
HWND handleOf(MessageWindow* window) {
    return reinterpret_cast<HWND>(window);
}

// Broadcasts may be sent as well as posted. A sent message comes here and never into the queue that
// takeMessage() reads, so it is put there.
LRESULT CALLBACK receiveSent(HWND window, UINT number, WPARAM parameter, LPARAM data) {
    if (number != messageDeviceChange) return DefWindowProcA(window, number, parameter, data);
    PostMessageA(window, number, parameter, 0);
    return TRUE;
}

}  // namespace

MessageWindow* createMessageWindow() {
    const HMODULE image = ownImage(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    const HWND window = CreateWindowExA(0, "STATIC", "", 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                        CW_USEDEFAULT, nullptr, nullptr, image, nullptr);
    if (window == nullptr) return nullptr;
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(receiveSent));
    ShowWindow(window, SW_HIDE);
    UpdateWindow(window);
    return reinterpret_cast<MessageWindow*>(window);
}

bool takeMessage(MessageWindow* window, WindowMessage& message) {
    MSG taken;
    if (window == nullptr || !PeekMessageA(&taken, handleOf(window), 0, 0, PM_REMOVE)) return false;
    message = {taken.message, taken.wParam};
    return true;
}

void destroyMessageWindow(MessageWindow* window) {
    if (window != nullptr) DestroyWindow(handleOf(window));
}

void destroyWindowsInChild() {}

}  // namespace platform
