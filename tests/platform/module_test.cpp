#include "platform/module.h"

#include <gtest/gtest.h>

#include "platform/thread.h"
#include "support/system.h"

namespace fs = std::filesystem;

namespace {

// A copy of the test program and its modules in a folder whose name has blanks and letters of several
// alphabets.
class CopiedProgram : public testing::Test {
protected:
    CopiedProgram()
        : top(fs::temp_directory_path() / ("platform test " + std::to_string(platform::currentThreadId()))),
          folder(top / fs::path(u8"Größe \u0416 \u65e5\u672c")),
          program(folder / test::ownProgram().filename()) {
        fs::create_directories(folder);
        fs::copy_file(test::ownProgram(), program, fs::copy_options::overwrite_existing);
        for (const char* name : {"zprusb_test_module", "zprusb_test_host"}) {
            const std::string file = test::libraryFile(name);
            fs::copy_file(test::ownProgram().parent_path() / file, folder / file,
                          fs::copy_options::overwrite_existing);
        }
    }

    ~CopiedProgram() override { fs::remove_all(top); }

    std::string answer(const fs::path& runs, const std::string& role, const std::string& argument) {
        test::ChildProcess child(runs, {role, argument});
        const std::string line = child.readLine();
        EXPECT_TRUE(child.endedWell());
        return line;
    }

    fs::path top, folder, program;
};

}  // namespace

TEST_F(CopiedProgram, loadsAModuleFromItsOwnFolderWhateverTheFoldersName) {
    EXPECT_EQ(answer(program, "load-module", "zprusb_test_module"), "42");
    EXPECT_EQ(answer(program, "load-module", "missing_module"), "0");
}

TEST_F(CopiedProgram, loadsNoModuleFromAnywhereElse) {
    fs::remove(folder / test::libraryFile("zprusb_test_module"));
    fs::current_path(test::ownProgram().parent_path());  // where there is one
    EXPECT_EQ(answer(program, "load-module", "zprusb_test_module"), "0");
}

TEST_F(CopiedProgram, loadsAModuleBesideALibraryThatCameInByARelativePath) {
    const fs::path plain = top / "beside";
    fs::rename(folder, plain);
    EXPECT_EQ(answer(test::ownProgram(), "load-through-library", plain.string()), "42");
    EXPECT_EQ(answer(test::ownProgram(), "load-through-library", (top / "missing").string()), "0");
}

TEST(Modules, haveNoFunctionOfAnUnknownName) {
    platform::ModuleHandle module = platform::loadBesideThisLibrary("zprusb_test_module");
    ASSERT_NE(module, nullptr);
    EXPECT_NE(platform::findFunction(module, "testModuleAnswer"), nullptr);
    EXPECT_EQ(platform::findFunction(module, "testModuleQuestion"), nullptr);
    platform::unloadModule(module);
}
