#include "common/device_change.h"

#include <windows.h>

#include <dbt.h>  // needs the header above

namespace control {
namespace {

BOOL CALLBACK postToOwnWindow(HWND window, LPARAM process) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    // Posted, not sent: hosts look at the messages that they take from their queue.
    if (owner == static_cast<DWORD>(process)) PostMessageA(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    return TRUE;
}

}  // namespace

void notifyDeviceChange() {
    EnumWindows(postToOwnWindow, static_cast<LPARAM>(GetCurrentProcessId()));
}

}  // namespace control
