#include "platform/message_window.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <string>

using namespace platform;

namespace {

void postDeviceChange() {
    const std::string name = "zprusb-device-change-" + std::to_string(getpid());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path + 1, name.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int sender = socket(AF_UNIX, SOCK_DGRAM, 0);
    ASSERT_EQ(sendto(sender, "", 0, 0, reinterpret_cast<const sockaddr*>(&address), length), 0);
    close(sender);
}

}  // namespace

TEST(MessageWindows, theFirstOfTheProcessMakesOneMessageOfAllThatWasPosted) {
    for (int round = 0; round < 2; ++round) {
        MessageWindow* window = createMessageWindow();
        MessageWindow* second = createMessageWindow();
        WindowMessage message{};
        // Devices may really come and go on the machine that runs the tests.
        while (takeMessage(window, message) || takeMessage(second, message)) message = {};
        for (int i = 0; i < 3; ++i) postDeviceChange();
        EXPECT_FALSE(takeMessage(second, message));
        EXPECT_TRUE(takeMessage(window, message));
        EXPECT_EQ(message.number, messageDeviceChange);
        EXPECT_EQ(message.parameter, deviceNodesChanged);
        EXPECT_FALSE(takeMessage(window, message));
        destroyMessageWindow(second);
        destroyMessageWindow(window);
    }
}
