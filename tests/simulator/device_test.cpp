#include <thread>

#include "host.h"
#include "platform/device_changes.h"
#include "support/system.h"

using namespace test;

namespace {

class Devices : public SimulatorTest {
protected:
    ~Devices() override { platform::closeDeviceChanges(changes); }

    // As long as that takes; the test's time limit ends it.
    void awaitDeviceChange() {
        while (!platform::takeDeviceChange(changes)) std::this_thread::yield();
    }

    platform::DeviceChanges* changes = platform::openDeviceChanges();
};

TEST_F(Devices, AreToldApartByTheirPathsAndSayThatTheyAreSimulated) {
    configure({Json::object(), {{"foreign", true}}, {{"serial", "LOBBY"}}});
    const char* starts[] = {R"(\\?\usb#vid_5a2c&pid_0012#SIMULATED0001P)",
                            R"(\\?\usb#vid_ffff&pid_0001#SIMULATED0002P)",
                            R"(\\?\usb#vid_5a2c&pid_0012#SIMULATEDLOBBY#)"};
    for (uint32_t number = 0; number < 3; ++number) {
        EXPECT_EQ(SDKUsb_CheckDeviceName(number), none);
        const Host host(number);
        EXPECT_EQ(SDKUsb_CheckDeviceName(number), number);
        char text[1024] = "";
        EXPECT_EQ(SDKUsb_GetDeviceName(number, text), 1u);
        EXPECT_TRUE(std::string(text).starts_with(starts[number])) << text;
        EXPECT_EQ(SDKUsb_GetDeviceIDString(number, text), 1u);
        EXPECT_NE(std::string(text).find("SIMULATED"), std::string::npos) << text;
    }
    EXPECT_EQ(SDKUsb_Open(3), none);
}

TEST_F(Devices, ThatAreClosedHaveNoNameAndNoPipes) {
    char name[1024];
    EXPECT_EQ(SDKUsb_GetDeviceName(0, name), 0u);
    EXPECT_EQ(SDKUsb_GetPipeHandle(0, 0, 0, 0), none);
    EXPECT_EQ(SDKUsb_CheckDevice(0), 0u);
    EXPECT_EQ(SDKUsb_GetDeviceName(none, name), 0u);
    SDKUsb_Close(none);
    SDKUsb_ClosePipe(none);
}

TEST_F(Devices, LeaveNothingBehindWhenTheyAreClosed) {
    const auto use = [](int times) {
        for (int i = 0; i < times; ++i) {
            const Host host;
            EXPECT_EQ(host.ask(getStatus).size(), 58u);
            host.send({0x05, 0xC0});  // closed while the printer waits for the rest
        }
        for (int i = 0; i < times; ++i) SDKUsb_Close(SDKUsb_Open(0));
    };
    use(1);
    const unsigned before = resourceCount();
    use(100);
    EXPECT_TRUE(resourcesFallTo(before));
}

TEST_F(Devices, RememberWhatHappenedBeforeTheyWereClosed) {
    EXPECT_EQ(Host().ask(printRequest(9)), success());
    EXPECT_EQ(Host().ask(getStatus)[34], 9);
}

TEST_F(Devices, ThatAreUnpluggedFailAtOnceAndComeBackWhenPluggedIn) {
    Host host;
    std::thread waiting([&] { EXPECT_TRUE(host.receive().empty()); });
    ASSERT_EQ(zprusbsim_unplug(0), 1u);
    waiting.join();
    awaitDeviceChange();
    EXPECT_FALSE(host.isPresent());
    EXPECT_FALSE(host.send(getStatus));
    EXPECT_EQ(SDKUsb_CheckDeviceName(0), none);
    EXPECT_EQ(SDKUsb_Open(0), none);

    ASSERT_EQ(zprusbsim_plug(0), 1u);
    awaitDeviceChange();
    EXPECT_FALSE(host.isPresent()) << "the handle belongs to the time before";
    host.close();
    EXPECT_EQ(Host().ask(getStatus).size(), 58u);
    EXPECT_EQ(zprusbsim_unplug(1), 0u);
}

TEST_F(Devices, ThatAreRepluggedTellWhenTheyGoAndWhenTheyAreBack) {
    addFault({{"command", "GetStatus"}, {"action", "replug"}, {"seconds", 0.2}});
    EXPECT_TRUE(Host().ask(getStatus).empty());
    awaitDeviceChange();
    awaitDeviceChange();
    EXPECT_EQ(Host().ask(getStatus).size(), 58u);
}

// Every test is a process of its own: this one ends while its printers are at work.
TEST(OpenDevices, DontKeepTheProcessFromEnding) {
    zprusbsim_configure("{\"printers\": [{}, {}]}", nullptr, 0);
    EXPECT_EQ(SDKUsb_Open(0), 0u);
    EXPECT_EQ(SDKUsb_Open(1), 1u);
}

}  // namespace
