// The test program starts itself again as the other process of a test; its first argument is then a role.
#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <thread>

#include "platform/module.h"
#include "platform/named_mutex.h"
#include "platform/thread.h"

namespace {

// Tells when it has to wait and how it got the mutex, and releases it when its input ends.
int holdMutex(const char* name) {
    constexpr const char* outcomes[] = {"obtained", "abandoned", "waits", "failed"};
    platform::NamedMutex* mutex = platform::openNamedMutex(name);
    platform::MutexWait wait = platform::waitForNamedMutex(mutex, 0);
    if (wait == platform::MutexWait::timedOut) {
        std::cout << outcomes[static_cast<int>(wait)] << std::endl;
        wait = platform::waitForNamedMutex(mutex, 10'000);
    }
    std::cout << outcomes[static_cast<int>(wait)] << std::endl;
    std::cin.get();
    const bool released = platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    return released ? 0 : 1;
}

// Has the mutex nearly all the time until its input ends.
int holdMutexAgainAndAgain(const char* name) {
    platform::NamedMutex* mutex = platform::openNamedMutex(name);
    std::atomic<bool> ended{false};
    std::jthread user([&] {
        while (!ended) {
            platform::waitForNamedMutex(mutex, platform::forever);
            platform::sleepMilliseconds(20);
            platform::releaseNamedMutex(mutex);
        }
    });
    std::cin.get();
    ended = true;
    return 0;
}

// Tells what the module's function says, or 0.
int askModule(const char* name) {
    platform::ModuleHandle module = platform::loadBesideThisLibrary(name);
    auto* answer = module ? platform::findFunction(module, "testModuleAnswer") : nullptr;
    std::cout << (answer ? reinterpret_cast<int (*)()>(answer)() : 0) << std::endl;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string role = argc == 3 ? argv[1] : "";
    if (role == "hold-mutex") return holdMutex(argv[2]);
    if (role == "hold-mutex-again") return holdMutexAgainAndAgain(argv[2]);
    if (role == "ask-module") return askModule(argv[2]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
