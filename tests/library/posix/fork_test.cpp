// Programs that fork while the library is at work.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>

#include "calls.h"
#include "open_printer.h"
#include "support/system.h"

namespace {

/// What a child does: it finds nothing open, leaves its parent's devices alone, and may have printers of its
/// own.
void useLibraryInChild(FakeBus& ofParent) {
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(listPrinters(), Bytes{});
    zprusb_close();
    EXPECT_EQ(codeOf(zprusb_ReleaseObject), ZPRUSB_SUCCESS);
    EXPECT_EQ(ofParent.countCalls("Close"), 0u);
    FakeBus::pathStart += "-child";
    FakeBus own;
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    zprusb_close();
    EXPECT_EQ(own.countCalls("Close 0"), 1u);
}

/// A child of this process, which lives until the end of its input.
class Child {
public:
    explicit Child(FakeBus& bus) : process_(fork()) {
        if (process_ != 0) return;
        alarm(30);  // one that hangs is killed
        useLibraryInChild(bus);
        uint8_t done = testing::Test::HasFailure();
        uint32_t count = 0;
        platform::writePipe(report_.writer, &done, 1, count);
        input_.closeWriter();
        platform::readPipe(input_.reader, &done, 1, count);
        _exit(0);
    }
    ~Child() {
        input_.closeWriter();
        waitpid(process_, nullptr, 0);
    }
    bool didWell() {
        report_.closeWriter();
        uint8_t failed = 1;
        uint32_t count = 0;
        return platform::readPipe(report_.reader, &failed, 1, count) && count == 1 && failed == 0;
    }

private:
    test::Pipe input_, report_;
    const pid_t process_;
};

}  // namespace

TEST_F(OpenPrinter, isNotOpenInForkedChildrenWhateverOtherThreadsAreDoing) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "The sanitizer lets no child of several threads start a thread.";
#endif
    std::atomic<bool> stop = false;
    const auto call = [&](auto entry, auto... arguments) {
        return [=, &stop] {
            while (!stop) codeOf(entry, arguments...);
        };
    };
    std::vector<std::jthread> threads;
    threads.emplace_back(call(zprusb_status));
    threads.emplace_back(call(zprusb_getModelName));
    threads.emplace_back(call(zprusb_copies, uint16_t{1}));
    threads.emplace_back([&] {
        while (!stop) listPrinters();
    });
    for (int round = 0; round < 5; ++round) EXPECT_TRUE(Child(bus).didWell());
    stop = true;
    threads.clear();
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    EXPECT_EQ(bus.countCalls("Close"), 0u);

    Child child(bus);
    EXPECT_TRUE(child.didWell());
    bus[0].unplug();  // as the child has the pipes' ends as well, closing them ends nothing
    zprusb_close();
    bus[0].plugIn();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    bus[0].unplug();
    reportDeviceChange();  // reaches this process, though the child has inherited what takes it
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (bus.countCalls("Close 0") < 2 && std::chrono::steady_clock::now() < end) usleep(1000);
    EXPECT_EQ(bus.countCalls("Close 0"), 2u);
}
