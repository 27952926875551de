#include <thread>

#include "host.h"
#include "platform/message_window.h"
#include "support/system.h"

using namespace test;

namespace {

class Devices : public SimulatorTest {};

const Bytes getStatus{0x01, 0x00, 0, 0};
using Clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(60);

std::string nameOf(uint64_t device) {
    char name[1024] = "";
    EXPECT_EQ(SDKUsb_GetDeviceName(device, name), 1u);
    return name;
}

bool deviceChangeArrives(platform::MessageWindow* window) {
    const auto deadline = Clock::now() + patience;
    platform::WindowMessage message{};
    while (Clock::now() < deadline) {
        if (!platform::takeMessage(window, message)) {
            std::this_thread::yield();
        } else if (message.number == 0x0219 && message.parameter == 7) {
            return true;
        }
    }
    return false;
}

TEST_F(Devices, WithoutConfigurationAreOnePrinterThatSaysItIsSimulated) {
    EXPECT_EQ(SDKUsb_CheckDeviceName(0), none);
    EXPECT_EQ(SDKUsb_Open(1), none);
    const Host host;
    EXPECT_EQ(SDKUsb_CheckDeviceName(0), 0u);
    const std::string name = nameOf(0);
    EXPECT_EQ(name.substr(12, 4), "5a2c");
    EXPECT_EQ(name.substr(21, 4), "0012");
    EXPECT_EQ(name.find('\\', 4), std::string::npos);
    EXPECT_NE(name.find("SIMULATED"), std::string::npos);
    char text[1024] = "";
    EXPECT_EQ(SDKUsb_GetDeviceIDString(0, text), 1u);
    EXPECT_NE(std::string(text).find("SIMULATED"), std::string::npos);
}

TEST_F(Devices, AreAllToldApartByTheirPaths) {
    configure({{"printers", {Json::object(), {{"foreign", true}}, {{"serial", "LOBBY"}}}}});
    std::vector<std::string> names;
    for (uint32_t number = 0; number < 3; ++number) {
        const Host host(number);
        names.push_back(nameOf(number));
    }
    EXPECT_NE(names[0], names[2]);
    EXPECT_NE(names[2].find("#SIMULATEDLOBBY#"), std::string::npos);
    EXPECT_NE(names[1].substr(12, 4), "5a2c");
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
    const auto useOnce = [] {
        const Host host;
        EXPECT_EQ(host.ask(getStatus).size(), 58u);
        host.send({0x05, 0xC0});  // closed while the printer waits for the rest
    };
    const auto lookOnly = [] { SDKUsb_Close(SDKUsb_Open(0)); };
    useOnce();
    lookOnly();
    const unsigned before = resourceCount();
    for (int i = 0; i < 100; ++i) {
        useOnce();
        lookOnly();
    }
    // Threads that were waited for may be a moment in the system's books yet.
    const auto deadline = Clock::now() + patience;
    while (resourceCount() > before + 2 && Clock::now() < deadline) std::this_thread::yield();
    EXPECT_LE(resourceCount(), before + 2);
}

TEST_F(Devices, RememberWhatHappenedBeforeTheyWereClosed) {
    configure({{"printers", {{{"media", smallMedia}}}}});
    {
        const Host host;
        ASSERT_EQ(host.ask(printRequest(9, 3)), acknowledgement());
        ASSERT_TRUE(host.send(pattern(smallPageSize)));
        ASSERT_EQ(zprusbsim_waitForPages(0, 1, 30000), 1u);
    }
    const Host host;
    EXPECT_EQ(host.ask(getStatus)[34], 9);
    EXPECT_EQ(host.ask({0x05, 0xC0, 2, 0, 0x60, 4})[10], 3);
}

TEST_F(Devices, ThatAreUnpluggedFailAtOnceAndComeBackWhenPluggedIn) {
    platform::MessageWindow* window = platform::createMessageWindow();
    Host host;
    std::thread waiting([&] { EXPECT_TRUE(host.receive().empty()); });
    ASSERT_EQ(zprusbsim_unplug(0), 1u);
    waiting.join();
    EXPECT_TRUE(deviceChangeArrives(window));
    EXPECT_FALSE(host.isPresent());
    EXPECT_FALSE(host.send(getStatus));
    EXPECT_EQ(SDKUsb_CheckDeviceName(0), none);
    EXPECT_EQ(SDKUsb_Open(0), none);

    ASSERT_EQ(zprusbsim_plug(0), 1u);
    EXPECT_TRUE(deviceChangeArrives(window));
    EXPECT_FALSE(host.isPresent()) << "the handle belongs to the time before";
    host.close();
    EXPECT_EQ(Host().ask(getStatus).size(), 58u);
    platform::destroyMessageWindow(window);
    EXPECT_EQ(zprusbsim_unplug(1), 0u);
}

TEST_F(Devices, ThatAreRepluggedTellWhenTheyGoAndWhenTheyAreBack) {
    platform::MessageWindow* window = platform::createMessageWindow();
    const char* fault = R"({"command": "GetStatus", "action": "replug", "seconds": 0.2})";
    ASSERT_EQ(zprusbsim_addFault(fault, nullptr, 0), 1u);
    Host host;
    EXPECT_TRUE(host.ask(getStatus).empty());
    host.close();
    EXPECT_TRUE(deviceChangeArrives(window));
    EXPECT_TRUE(deviceChangeArrives(window));
    EXPECT_EQ(Host().ask(getStatus).size(), 58u);
    platform::destroyMessageWindow(window);
}

// Every test is a process of its own: this one ends while its printers are at work.
TEST(OpenDevices, DontKeepTheProcessFromEnding) {
    zprusbsim_configure("{\"printers\": [{}, {}]}", nullptr, 0);
    EXPECT_EQ(SDKUsb_Open(0), 0u);
    EXPECT_EQ(SDKUsb_Open(1), 1u);
}

}  // namespace
