#include "platform/module.h"

#include <gtest/gtest.h>

#include <iostream>

#include "platform/thread.h"
#include "support/role.h"
#include "support/system.h"

namespace fs = std::filesystem;

namespace {

/// Tells what the module's function says, or 0.
const test::Role asker("ask-module", [](const std::string& name) {
    platform::ModuleHandle module = platform::loadBesideThisLibrary(name.c_str());
    auto* answer = module ? platform::findFunction(module, "testModuleAnswer") : nullptr;
    std::cout << (answer ? reinterpret_cast<int (*)()>(answer)() : 0) << std::endl;
    return 0;
});

}  // namespace

TEST(Modules, areLoadedFromTheProgramsOwnFolderWhateverItsNameAndFromNowhereElse) {
    const fs::path program = test::ownProgram();
    const std::string module = test::libraryFile("zprusb_test_module");
    const fs::path top =
        fs::temp_directory_path() / ("platform test " + std::to_string(platform::currentThreadId()));
    const fs::path folder = top / u8"Größe \u0416 \u65e5\u672c";
    fs::create_directories(folder);
    for (const fs::path& file : {program.filename(), fs::path(module)})
        fs::copy_file(program.parent_path() / file, folder / file);
    const auto answer = [&] {
        return test::ChildProcess(folder / program.filename(), {"ask-module", "zprusb_test_module"}).readLine();
    };
    EXPECT_EQ(answer(), "42");
    fs::remove(folder / module);
    fs::current_path(program.parent_path());  // where there is one
    EXPECT_EQ(answer(), "0");
    fs::remove_all(top);
}
