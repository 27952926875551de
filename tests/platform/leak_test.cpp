// What is opened and closed a hundred times leaves nothing open.
#include <gtest/gtest.h>

#include <thread>

#include "platform/message_window.h"
#include "platform/module.h"
#include "platform/named_mutex.h"
#include "platform/thread.h"
#include "support/system.h"

using namespace platform;

namespace {

struct OneByte {
    PipeHandle pipe;
    uint8_t byte = 0;
    uint32_t count = 0;
};

void readOneByte(void* argument) {
    auto& read = *static_cast<OneByte*>(argument);
    readPipe(read.pipe, &read.byte, 1, read.count);
}

void endThreads() {
    test::Pipe pipe;
    uint32_t written = 0;
    for (bool byForce : {false, true}) {
        if (!byForce) writePipe(pipe.writer, reinterpret_cast<const uint8_t*>("x"), 1, written);
        OneByte read{pipe.reader};
        Thread* thread = startThread(readOneByte, &read);
        EXPECT_TRUE(byForce ? endThreadByForce(thread) : waitForThread(thread, forever));
        closeThread(thread);
    }
}

void abandonMutex() {
    NamedMutex* mutex = openNamedMutex("test_leak");
    std::thread([&] {
        EXPECT_EQ(waitForNamedMutex(shareNamedMutex(mutex), 1000), MutexWait::obtained);
    }).join();
    EXPECT_EQ(waitForNamedMutex(mutex, 1000), MutexWait::abandoned);
    EXPECT_TRUE(releaseNamedMutex(mutex));
    closeNamedMutex(mutex);
    closeNamedMutex(mutex);
}

void loadModule() {
    ModuleHandle module = loadBesideThisLibrary("zprusb_test_module");
    ASSERT_NE(module, nullptr);
    unloadModule(module);
}

void openWindow() {
    MessageWindow* window = createMessageWindow();
    EXPECT_NE(window, nullptr);
    destroyMessageWindow(window);
}

}  // namespace

TEST(Resources, areGivenBackByEveryPartOfTheLayer) {
    constexpr struct {
        const char* subject;
        void (*round)();
    } table[] = {
        {"threads", endThreads}, {"mutexes", abandonMutex}, {"modules", loadModule}, {"windows", openWindow}};
    for (const auto& [subject, round] : table) {
        round();  // what the system sets up at the first use stays
        const unsigned before = test::resourceCount();
        for (int i = 0; i < 100; ++i) round();
        EXPECT_LT(test::resourceCount(), before + 10) << subject;  // the system opens and closes some of its own
    }
    test::removeMutex("test_leak");
}
