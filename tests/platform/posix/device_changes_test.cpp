#include "platform/device_changes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/device_change.h"
#include "device_event.h"

using namespace platform;

TEST(DeviceChangesOfTheSystem, theFirstOfTheProcessMakesOneOfAllThatWasPostedAndTheNextTakesItsPlace) {
    for (int round = 0; round < 2; ++round) {
        DeviceChanges* first = openDeviceChanges();
        DeviceChanges* second = openDeviceChanges();
        // Devices may really come and go on the machine that runs the tests.
        while (takeDeviceChange(first) || takeDeviceChange(second)) continue;
        for (int i = 0; i < 3; ++i) control::notifyDeviceChange();
        EXPECT_FALSE(takeDeviceChange(second));
        EXPECT_TRUE(takeDeviceChange(first));
        EXPECT_FALSE(takeDeviceChange(first));
        closeDeviceChanges(first);
        EXPECT_TRUE(takeDeviceChange(second)) << "what nobody took may have been lost";
        EXPECT_FALSE(takeDeviceChange(second));
        control::notifyDeviceChange();
        EXPECT_TRUE(takeDeviceChange(second));
        closeDeviceChanges(second);
    }
}

TEST(DeviceChangesOfTheSystem, takeTheKernelsWordOnlyWhenUsbDevicesCameOrWent) {
    const struct {
        std::string text;  // zero bytes are lines' ends here
        bool counts;
    } cases[] = {
        {"add@/usb1/1-2\nACTION=add\nDEVPATH=/usb1/1-2\nSUBSYSTEM=usb\nDEVTYPE=usb_device\nSEQNUM=7\n", true},
        {"remove@/usb1/1-2\nACTION=remove\nSUBSYSTEM=usb\nMAJOR=189\nDEVTYPE=usb_device\n", true},
        {"bind@/usb1/1-2\nACTION=bind\nSUBSYSTEM=usb\nDEVTYPE=usb_device\n", false},
        {"add@/usb1/1-2/1-2:1.0\nACTION=add\nSUBSYSTEM=usb\nDEVTYPE=usb_interface\n", false},
        {"remove@/usb1/1-2/lp0\nACTION=remove\nSUBSYSTEM=usbmisc\nDEVTYPE=usb_device\n", false},
        {"add@/block/sda\nACTION=add\nNOTE=SUBSYSTEM=usb\nSUBSYSTEM=block\nDEVTYPE=usb_device\n", false},
        {"", false},
    };
    for (auto [text, counts] : cases) {
        std::ranges::replace(text, '\n', '\0');
        EXPECT_EQ(tellsOfUsbDevice(text), counts) << text;
    }
}

TEST(DeviceChangesOfTheSystem, ignoreWhatTheKernelTellsOfOtherDevices) {
    const std::filesystem::path loopback = "/sys/class/net/lo/uevent";
    DeviceChanges* first = openDeviceChanges();
    while (takeDeviceChange(first)) continue;
    std::ofstream file(loopback);
    const bool told = static_cast<bool>(file << "add" << std::flush);
    EXPECT_FALSE(takeDeviceChange(first));
    closeDeviceChanges(first);
    if (!told) GTEST_SKIP() << "Only root makes the kernel tell of a device.";
}
