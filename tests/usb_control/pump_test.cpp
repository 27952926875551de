#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "common/control_library.h"
#include "fake_kernel.h"
#include "platform/pipe.h"
#include "support/system.h"
#include "usb/descriptors.h"
#include "usb/examination.h"
#include "usb/mark.h"

using namespace std::chrono_literals;
using fake::Bytes;
using fake::Packets;

namespace {

constexpr uint64_t none = ~uint64_t{0};

Bytes bytesOf(size_t length) {
    Bytes bytes(length);
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + length);
    return bytes;
}

Packets inPackets(const Bytes& bytes, bool endsWithEmpty) {
    Packets packets;
    for (size_t at = 0; at < bytes.size(); at += fake::packetSize) {
        const auto begin = bytes.begin() + static_cast<ptrdiff_t>(at);
        packets.emplace_back(begin,
                             begin + static_cast<ptrdiff_t>(std::min(fake::packetSize, bytes.size() - at)));
    }
    if (endsWithEmpty && bytes.size() % fake::packetSize == 0) packets.emplace_back();
    return packets;
}

/// An open printer, as a host has it.
class Host {
public:
    explicit Host(uint32_t number = 0) : device(SDKUsb_Open(number)) {
        write_ = SDKUsb_GetPipeHandle(device, 0, 0, 0);
        read_ = SDKUsb_GetPipeHandle(device, 0, 1, 0);
    }
    ~Host() {
        SDKUsb_Close(device);
        SDKUsb_ClosePipe(write_);
        SDKUsb_ClosePipe(read_);
    }

    bool send(const Bytes& bytes) {
        const platform::BrokenPipeGuard guard;
        uint32_t written;
        return platform::writePipe(write_, bytes.data(), static_cast<uint32_t>(bytes.size()), written, 4096);
    }

    Bytes receive() {
        Bytes bytes(512);
        uint32_t count = 0;
        platform::readPipe(read_, bytes.data(), 512, count);
        bytes.resize(count);
        return bytes;
    }

    const uint64_t device;

private:
    std::atomic<uint64_t> write_, read_;
};

class UsbControl : public testing::Test {
protected:
    UsbControl() { fake::reset(); }
};

void echo() {
    fake::answerWith([](const Bytes& bytes) { return Packets{{bytes.front()}}; });
}

bool exchanges(Host& host, uint8_t number) {
    return host.send({number, 1}) && host.receive() == Bytes{number};
}

// After a failed write, for whose moment the pipe stays broken.
bool exchangesSoon(Host& host, uint8_t number) {
    const auto limit = std::chrono::steady_clock::now() + 5s;
    while (!exchanges(host, number)) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

}  // namespace

TEST_F(UsbControl, GivesAnAnswerOfAnyLengthToOneRead) {
    Host host;
    for (size_t length = 1; length <= 300; ++length) {
        for (const bool endsWithEmpty : {false, true}) {
            fake::answerWith([=](const Bytes&) { return inPackets(bytesOf(length), endsWithEmpty); });
            ASSERT_TRUE(host.send({1}));
            ASSERT_EQ(host.receive(), bytesOf(length));
        }
    }
}

TEST_F(UsbControl, EndsAWriteWhenThePrinterHasTakenAllOfIt) {
    Host host;
    const Bytes page = bytesOf(50'000);
    std::atomic<bool> isOver = false;
    fake::holdBack(true);
    std::thread writer([&] { isOver = host.send(page); });
    while (fake::count(USBDEVFS_SUBMITURB) < 5) std::this_thread::yield();
    std::this_thread::sleep_for(50ms);
    EXPECT_FALSE(isOver);
    fake::holdBack(false);
    writer.join();
    EXPECT_TRUE(isOver);
    EXPECT_EQ(fake::taken(), page);
}

TEST_F(UsbControl, FailsAWriteThatThePrinterRefusesAndGoesOnAfterIt) {
    Host host;
    echo();
    uint8_t number = 0;
    for (const int status : {-EPIPE, -EPROTO, -ETIMEDOUT, -EOVERFLOW}) {
        for (const size_t length : {size_t{0}, size_t{1}, size_t{63}}) {
            ASSERT_TRUE(exchangesSoon(host, ++number));
            fake::endNextTransfer(false, status, length);
            EXPECT_FALSE(host.send(bytesOf(100)));
        }
    }
    EXPECT_TRUE(exchangesSoon(host, ++number));
    EXPECT_EQ(fake::count(USBDEVFS_CLEAR_HALT), 3U);
}

TEST_F(UsbControl, ReadsOnAfterAnAnswerThatThePrinterHasRefused) {
    Host host;
    echo();
    ASSERT_TRUE(exchanges(host, 1));
    for (uint8_t number = 2; number < 6; ++number) {
        fake::endNextTransfer(true, -EPIPE);
        ASSERT_TRUE(exchanges(host, number));
    }
    EXPECT_EQ(fake::count(USBDEVFS_CLEAR_HALT), 4U);
}

TEST_F(UsbControl, IsGoodAgainAfterAnyFailedRequestToTheKernel) {
    constexpr unsigned long requests[] = {
        USBDEVFS_CLAIMINTERFACE, USBDEVFS_RELEASEINTERFACE, USBDEVFS_GETDRIVER,  USBDEVFS_DISCONNECT_CLAIM,
        USBDEVFS_SUBMITURB,      USBDEVFS_DISCARDURB,       USBDEVFS_CLEAR_HALT, USBDEVFS_GET_CAPABILITIES};
    echo();
    for (const unsigned long request : requests) {
        for (unsigned before = 0; before < 8; ++before) {
            fake::giveInterfaceTo(before % 2 == 0 ? "usblp" : "");
            fake::failRequest(request, before, EIO);
            {
                Host host;
                ASSERT_TRUE(exchanges(host, 1)) << "request " << request << " after " << before;
            }
            fake::failNothing();
        }
    }
}

TEST_F(UsbControl, WaitsForAForeignProgramAndNeverRobsIt) {
    Host host;
    echo();
    fake::giveInterfaceTo("usbfs");
    std::thread free([] {
        std::this_thread::sleep_for(200ms);
        EXPECT_EQ(fake::count(USBDEVFS_DISCONNECT_CLAIM), 0U);
        fake::giveInterfaceTo("");
    });
    EXPECT_TRUE(exchanges(host, 1));
    free.join();
    EXPECT_EQ(fake::count(USBDEVFS_DISCONNECT_CLAIM), 0U);
}

TEST_F(UsbControl, KnowsItsOwnHolderByTheLastMarkAlone) {
    usb::ConnectedPrinter printer;
    printer.bus = fake::bus();
    printer.address = 200;
    usb::Mark stopped(printer), robber(printer), another(printer);
    EXPECT_FALSE(another.isSetElsewhere());
    stopped.set();
    EXPECT_TRUE(another.isSetElsewhere());
    robber.set();
    EXPECT_TRUE(another.isSetElsewhere());
    robber.remove();
    EXPECT_FALSE(another.isSetElsewhere());
}

TEST_F(UsbControl, TakesTheInterfaceBackThatWasTakenFromIt) {
    Host host;
    echo();
    for (uint8_t number = 0; number < 20; ++number) {
        ASSERT_TRUE(exchanges(host, number));
        fake::rob();
    }
}

TEST_F(UsbControl, ReportsAnUnpluggedPrinterAndFindsItAgainByItsNumber) {
    echo();
    unsigned resources = 0;
    for (int round = 0; round < 10; ++round) {
        {
            Host host;
            ASSERT_EQ(host.device, 0U);
            ASSERT_TRUE(exchanges(host, 1));
            fake::holdBack(true);
            std::thread puller([] {
                std::this_thread::sleep_for(5ms);
                fake::unplug("1-1");
            });
            EXPECT_FALSE(host.send(bytesOf(20'000)));
            puller.join();
            EXPECT_EQ(host.receive(), Bytes());
            EXPECT_EQ(SDKUsb_CheckDeviceName(0), none);
            EXPECT_EQ(SDKUsb_CheckDevice(0), 0U);
            EXPECT_EQ(SDKUsb_Open(0), none);
        }
        fake::holdBack(false);
        fake::plug("1-1");
        if (round == 0) resources = test::resourceCount();
    }
    EXPECT_EQ(test::resourceCount(), resources);
}

TEST_F(UsbControl, NumbersPrintersByTheirPortsWithoutTheUnusable) {
    fake::plug("1-10", "0010");
    fake::plug("1-9", "0009");
    fake::plug("1-2", "0002", Bytes{18, 1, 0});  // which lies
    fake::plug("1-3", "0003");
    fake::forbid("1-3");
    const char* const paths[] = {"\\\\?\\usb#vid_5a2c&pid_0012#0001#{usb-printer-1-1}",
                                 "\\\\?\\usb#vid_5a2c&pid_0012#0009#{usb-printer-1-9}",
                                 "\\\\?\\usb#vid_5a2c&pid_0012#0010#{usb-printer-1-10}"};
    for (uint32_t number = 0; number < 3; ++number) {
        char path[1024];
        ASSERT_EQ(SDKUsb_Open(number), number);
        ASSERT_EQ(SDKUsb_GetDeviceName(number, path), 1U);
        EXPECT_STREQ(path, paths[number]);
    }
    EXPECT_EQ(SDKUsb_Open(3), none);
    fake::unplug("1-9");
    fake::plug("1-4", "0009");
    EXPECT_EQ(SDKUsb_Open(1), 1U) << "the one with the same serial at another port";
    for (uint32_t number = 0; number < 3; ++number) SDKUsb_Close(number);
}

TEST_F(UsbControl, OpensAnewInTheChildOfAFork) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "The sanitizers' own locks and threads don't survive a fork beside other threads.";
#endif
    echo();
    Host host;
    ASSERT_TRUE(exchanges(host, 1));
    const pid_t child = fork();
    if (child == 0) {
        fake::giveInterfaceTo("");  // the stand-in is the child's own
        bool isGood = SDKUsb_CheckDeviceName(0) == none;
        {
            Host own;
            isGood = isGood && own.device == 0 && exchanges(own, 2);
        }
        _exit(isGood ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(exchanges(host, 3));
}

TEST_F(UsbControl, TellsInWordsWhyAPrinterCantBeUsed) {
    fake::plug("1-2", "", Bytes{18, 1, 0});
    fake::plug("1-3", "0003");
    fake::forbid("1-3");
    char text[1000];
    ASSERT_EQ(zprusbusb_examine(text, sizeof text), 3U);
    char words[1000];
    std::snprintf(
        words, sizeof words,
        "port 1-1, serial 0001: may be used; nobody holds its interface.\n"
        "port 1-2, serial none: its descriptors are not those of a printer; nobody holds its interface.\n"
        "port 1-3, serial 0003: /dev/bus/usb/%03u/003: No such file or directory; nobody holds its "
        "interface.\n",
        fake::bus());
    EXPECT_STREQ(text, words);
    EXPECT_EQ(zprusbusb_examine(text, 10), 3U);
    EXPECT_STREQ(text, "port 1-1,");
    EXPECT_EQ(zprusbusb_examine(nullptr, 0), 3U);
}

TEST_F(UsbControl, FindsNoEndpointsInDescriptorsThatAreCutOffOrLie) {
    const Bytes good = fake::goodDescriptors();
    usb::Endpoints endpoints;
    EXPECT_TRUE(usb::findEndpoints(good.data(), good.size(), endpoints));
    EXPECT_EQ(endpoints.in, 0x82);
    for (size_t length = 0; length < good.size(); ++length) {
        const Bytes part(good.begin(), good.begin() + static_cast<ptrdiff_t>(length));
        EXPECT_FALSE(usb::findEndpoints(part.data(), part.size(), endpoints)) << length;
        for (const unsigned value : {0U, 1U, 2U, 0x7FU, 0xFFU}) {
            Bytes other = good;
            other[length] = static_cast<uint8_t>(value);
            const bool found = usb::findEndpoints(other.data(), other.size(), endpoints);
            EXPECT_TRUE(!found || endpoints.inPacket <= 1024);
        }
    }
}
