// The test program starts itself again as the other process of a test; its first argument is then a role.
#include <gtest/gtest.h>

#include <iostream>

#include "platform/module.h"
#include "platform/named_mutex.h"

namespace {

// Tells how it got the mutex, and releases it when its input ends.
int holdMutex(const char* name) {
    constexpr const char* outcomes[] = {"obtained", "abandoned", "timed out", "failed"};
    platform::NamedMutex* mutex = platform::openNamedMutex(name);
    std::cout << outcomes[static_cast<int>(platform::waitForNamedMutex(mutex, 10'000))] << std::endl;
    std::cin.get();
    const bool released = platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    return released ? 0 : 1;
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
    if (role == "ask-module") return askModule(argv[2]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
