#include "platform/device_changes.h"

#include <gtest/gtest.h>

#include <thread>

#include "../../../src/platform/windows/system.h"

#include <dbt.h>

using namespace platform;

namespace {

/// Among those at the top level, where broadcasts go.
HWND windowOfThisThread() {
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM result) -> BOOL {
            char name[16];
            GetClassNameA(window, name, sizeof name);
            const bool isIt = std::string(name) == "Static";
            if (isIt) *reinterpret_cast<HWND*>(result) = window;
            return !isIt;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

}  // namespace

TEST(DeviceChangesOfTheSystem, giveEachDeviceChangeThatIsPostedOrSentOnceAndAreHidden) {
    DeviceChanges* changes = openDeviceChanges();
    HWND handle = windowOfThisThread();
    ASSERT_NE(handle, nullptr);
    EXPECT_FALSE(IsWindowVisible(handle));
    for (int i = 0; i < 100; ++i) takeDeviceChange(changes);  // what the system says of a new window
    PostMessageA(handle, WM_DEVICECHANGE, 3, 0);
    PostMessageA(handle, WM_APP, DBT_DEVNODES_CHANGED, 0);
    for (int i = 0; i < 2; ++i) EXPECT_FALSE(takeDeviceChange(changes));
    std::atomic<bool> sent{false};
    std::thread sender([&] {
        SendMessageA(handle, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
        sent = true;
    });
    int taken = 0;
    while (!sent) taken += takeDeviceChange(changes);
    sender.join();
    for (int i = 0; i < 100; ++i) taken += takeDeviceChange(changes);
    EXPECT_EQ(taken, 1);
    closeDeviceChanges(changes);
}
