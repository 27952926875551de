// Programs that fork while the library is at work.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>

#include "calls.h"
#include "open_printer.h"

namespace {

/// A child finds nothing open, leaves its parent's devices alone, and may have printers of its own.
void useLibraryInChild(FakeBus& ofParent) {
    EXPECT_EQ(objectCounts(), std::pair(0, 1));
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_NO_OBJECT);
    EXPECT_EQ(listPrinters(), Bytes{});
    zprusb_close();
    EXPECT_EQ(ofParent.countCalls("Close"), 0u);
    FakeBus::pathStart += "-child";
    FakeBus own;
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    zprusb_close();
    EXPECT_EQ(own.countCalls("Close 0"), 1u);
}

/// It stops when it has used the library without a failure.
struct Child {
    explicit Child(FakeBus& bus) : process(fork()) {
        if (process == 0) {
            alarm(30);  // ends it when it hangs
            useLibraryInChild(bus);
            if (!testing::Test::HasFailure()) raise(SIGSTOP);
            _exit(1);
        }
        int status = 0;
        waitpid(process, &status, WUNTRACED);
        EXPECT_TRUE(WIFSTOPPED(status));
    }
    ~Child() {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    const pid_t process;
};

}  // namespace

TEST_F(OpenPrinter, isNotOpenInForkedChildrenWhateverOtherThreadsAreDoing) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "The sanitizers' own locks and threads don't survive a fork beside other threads.";
#endif
    std::atomic<bool> stop = false;
    std::vector<std::jthread> threads;
    for (auto* call : {+[] { codeOf(zprusb_status); }, +[] { codeOf(zprusb_getModelName); },
                       +[] { codeOf(zprusb_copies, uint16_t{1}); }, +[] { listPrinters(); }})
        threads.emplace_back([=, &stop] {
            while (!stop) call();
        });
    for (int round = 0; round < 5; ++round) const Child child(bus);
    stop = true;
    threads.clear();

    const Child child(bus);  // has inherited the pipes' ends and what takes notifications
    bus[0].unplug();
    zprusb_close();
    bus[0].plugIn();
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    bus[0].unplug();
    EXPECT_TRUE(bus.isClosedOnAChange(0, 2));
}
