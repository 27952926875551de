#include "platform/device_changes.h"

#include "system.h"

#include <dbt.h>

namespace platform {

namespace {

// A listener is the handle of a hidden window and nothing else.
HWND handleOf(DeviceChanges* window) {
    return reinterpret_cast<HWND>(window);
}

// Broadcasts may be sent as well as posted. A sent message comes here and never into the queue that
// takeDeviceChange() reads, so it is put there.
LRESULT CALLBACK receiveSent(HWND window, UINT number, WPARAM parameter, LPARAM data) {
    if (number != WM_DEVICECHANGE) return DefWindowProcA(window, number, parameter, data);
    PostMessageA(window, number, parameter, 0);
    return TRUE;
}

}  // namespace

DeviceChanges* openDeviceChanges() {
    const HMODULE image = ownImage(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    const HWND window = CreateWindowExA(0, "STATIC", "", 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                        CW_USEDEFAULT, nullptr, nullptr, image, nullptr);
    if (window == nullptr) return nullptr;
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(receiveSent));
    ShowWindow(window, SW_HIDE);
    UpdateWindow(window);
    return reinterpret_cast<DeviceChanges*>(window);
}

bool takeDeviceChange(DeviceChanges* changes) {
    MSG message;
    if (changes == nullptr || !PeekMessageA(&message, handleOf(changes), 0, 0, PM_REMOVE)) return false;
    return message.message == WM_DEVICECHANGE && message.wParam == DBT_DEVNODES_CHANGED;
}

void closeDeviceChanges(DeviceChanges* window) {
    if (window != nullptr) DestroyWindow(handleOf(window));
}

void closeDeviceChangesInChild() {}

}  // namespace platform
