// The test program starts itself again as the other process of a test; its first argument is then a role.
#include <gtest/gtest.h>

#include <iostream>
#include <map>

#include "platform/module.h"
#include "platform/named_mutex.h"
#include "support/system.h"

namespace test {

namespace {

// Tells when it owns the mutex, and releases it when its input ends.
int holdMutex(const std::string& name) {
    platform::NamedMutex* mutex = platform::openNamedMutex(name.c_str());
    const platform::MutexWait wait = platform::waitForNamedMutex(mutex, 10'000);
    std::cout << (wait == platform::MutexWait::obtained    ? "obtained"
                  : wait == platform::MutexWait::abandoned ? "abandoned"
                                                           : "failed")
              << std::endl;
    std::string line;
    std::getline(std::cin, line);
    const bool released = platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    return released ? 0 : 1;
}

int report(platform::ModuleHandle module) {
    auto* answer = module ? platform::findFunction(module, "testModuleAnswer") : nullptr;
    std::cout << (answer ? reinterpret_cast<int (*)()>(answer)() : 0) << std::endl;
    return 0;
}

int loadModule(const std::string& name) {
    return report(platform::loadBesideThisLibrary(name.c_str()));
}

// Loads the host from `folder`, relative to the folder above it, and goes elsewhere before the host loads.
int loadThroughLibrary(const std::string& folder) {
    const std::filesystem::path path(folder);
    std::filesystem::current_path(path.parent_path());
    void* host = openLibrary(path.filename() / libraryFile("zprusb_test_host"));
    std::filesystem::current_path(std::filesystem::temp_directory_path());
    auto* load = host ? platform::findFunction(host, "loadBesideTestHost") : nullptr;
    return report(load ? reinterpret_cast<void* (*)(const char*)>(load)("zprusb_test_module") : nullptr);
}

const std::map<std::string, int (*)(const std::string&)> roles{
    {"hold-mutex", holdMutex}, {"load-module", loadModule}, {"load-through-library", loadThroughLibrary}};

}  // namespace
}  // namespace test

int main(int argc, char** argv) {
    const auto role = argc == 3 ? test::roles.find(argv[1]) : test::roles.end();
    if (role != test::roles.end()) return role->second(argv[2]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
