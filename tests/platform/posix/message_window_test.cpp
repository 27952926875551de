#include "platform/message_window.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

#include "device_event.h"

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

TEST(MessageWindows, theFirstOfTheProcessMakesOneMessageOfAllThatWasPostedAndTheNextTakesItsPlace) {
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
        destroyMessageWindow(window);
        EXPECT_TRUE(takeMessage(second, message)) << "what nobody took may have been lost";
        EXPECT_FALSE(takeMessage(second, message));
        postDeviceChange();
        EXPECT_TRUE(takeMessage(second, message));
        destroyMessageWindow(second);
    }
}

TEST(MessageWindows, takeTheKernelsWordOnlyWhenUsbDevicesCameOrWent) {
    const std::string address = "/devices/pci0000:00/0000:00:14.0/usb1/1-2";
    const struct {
        std::string action, subsystem, type;
        bool counts;
    } cases[] = {
        {"add", "usb", "usb_device", true},      {"remove", "usb", "usb_device", true},
        {"bind", "usb", "usb_device", false},    {"change", "usb", "usb_device", false},
        {"add", "usb", "usb_interface", false},  {"remove", "usbmisc", "usb_device", false},
        {"add", "net", "usb_device", false},     {"remove", "block", "disk", false},
        {"removed", "usb", "usb_device", false},
    };
    const std::string zero(1, '\0');
    for (const auto& [action, subsystem, type, counts] : cases) {
        const std::string notification = action + "@" + address + zero + "ACTION=" + action + zero +
                                         "DEVPATH=" + address + zero + "SUBSYSTEM=" + subsystem + zero +
                                         "MAJOR=189" + zero + "MINOR=4" + zero + "DEVNAME=bus/usb/001/005" +
                                         zero + "DEVTYPE=" + type + zero + "PRODUCT=5a2c/12/100" + zero +
                                         "SEQNUM=4711" + zero;
        EXPECT_EQ(tellsOfUsbDevice(notification), counts) << notification;
        EXPECT_FALSE(tellsOfUsbDevice(notification.substr(0, notification.find("TYPE=") + 8)));
    }
    EXPECT_FALSE(tellsOfUsbDevice(""));
}

TEST(MessageWindows, ignoreWhatTheKernelTellsOfOtherDevices) {
    const std::filesystem::path loopback = "/sys/class/net/lo/uevent";
    MessageWindow* window = createMessageWindow();
    WindowMessage message{};
    while (takeMessage(window, message)) continue;
    std::ofstream file(loopback);
    const bool told = static_cast<bool>(file << "add" << std::flush);
    EXPECT_FALSE(takeMessage(window, message));
    destroyMessageWindow(window);
    if (!told) GTEST_SKIP() << "Only root makes the kernel tell of a device.";
}
