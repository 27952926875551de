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

class MessageWindows : public testing::Test {
protected:
    ~MessageWindows() override { destroyMessageWindow(window); }

    void SetUp() override {
        ASSERT_NE(handle, nullptr);
        takeDeviceChanges();
    }

    std::vector<uint64_t> takeDeviceChanges() {
        std::vector<uint64_t> parameters;
        WindowMessage message{};
        while (takeMessage(window, message)) {
            if (message.number == messageDeviceChange) parameters.push_back(message.parameter);
        }
        return parameters;
    }

    MessageWindow* window = createMessageWindow();
    HWND handle = windowOfThisThread();
};

}  // namespace

TEST_F(MessageWindows, areHidden) {
    EXPECT_FALSE(IsWindowVisible(handle));
}

TEST_F(MessageWindows, giveEachPostedMessageWithItsParameter) {
    PostMessageA(handle, messageDeviceChange, 3, 0);
    PostMessageA(handle, WM_APP, deviceNodesChanged, 0);
    PostMessageA(handle, messageDeviceChange, deviceNodesChanged, 0);
    EXPECT_EQ(takeDeviceChanges(), (std::vector<uint64_t>{3, deviceNodesChanged}));
}

TEST_F(MessageWindows, giveADeviceChangeThatAnotherThreadSendsOnce) {
    std::atomic<bool> sent{false};
    std::thread sender([&] {
        SendMessageA(handle, messageDeviceChange, deviceNodesChanged, 0);
        sent = true;
    });
    std::vector<uint64_t> taken;
    while (!sent) {
        for (uint64_t parameter : takeDeviceChanges()) taken.push_back(parameter);
    }
    sender.join();
    for (uint64_t parameter : takeDeviceChanges()) taken.push_back(parameter);
    EXPECT_EQ(taken, std::vector<uint64_t>{deviceNodesChanged});
}

TEST(MissingMessageWindows, haveNoMessages) {
    WindowMessage message{};
    EXPECT_FALSE(takeMessage(nullptr, message));
    destroyMessageWindow(nullptr);
}
