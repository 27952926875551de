#include "platform/message_window.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "../../../src/platform/windows/system.h"

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

void takeDeviceChanges(MessageWindow* window, std::vector<uint64_t>& parameters) {
    WindowMessage message{};
    while (takeMessage(window, message)) {
        if (message.number == messageDeviceChange) parameters.push_back(message.parameter);
    }
}

}  // namespace

TEST(MessageWindows, giveEachDeviceChangeThatIsPostedOrSentOnceAndAreHidden) {
    MessageWindow* window = createMessageWindow();
    HWND handle = windowOfThisThread();
    ASSERT_NE(handle, nullptr);
    EXPECT_FALSE(IsWindowVisible(handle));
    std::vector<uint64_t> taken;
    takeDeviceChanges(window, taken);
    taken.clear();
    PostMessageA(handle, messageDeviceChange, 3, 0);
    PostMessageA(handle, WM_APP, deviceNodesChanged, 0);
    takeDeviceChanges(window, taken);
    std::atomic<bool> sent{false};
    std::thread sender([&] {
        SendMessageA(handle, messageDeviceChange, deviceNodesChanged, 0);
        sent = true;
    });
    while (!sent) takeDeviceChanges(window, taken);
    sender.join();
    takeDeviceChanges(window, taken);
    EXPECT_EQ(taken, (std::vector<uint64_t>{3, deviceNodesChanged}));
    destroyMessageWindow(window);
}
