// Each case is a process that loads the library from a folder of its own: the test program starts itself again,
// with the case's role as its argument, in the folder above.
#include <gtest/gtest.h>
#include <zprusb.h>

#include <atomic>
#include <cstring>
#include <iostream>

#include "calls.h"
#include "common/device_change.h"
#include "fake_control_library.h"
#include "platform/module.h"
#include "platform/thread.h"
#include "support/system.h"

namespace fs = std::filesystem;

// A program may have functions of the same names as the library's. The library doesn't call them.
extern "C" {
uint32_t zprusb_listupPrinter(uint8_t*) {
    return 0;
}
uint32_t zprusb_selectPrinter(uint8_t, uint16_t*) {
    return 0;
}
}

namespace {

const fs::path folderName(u8"Größe \u0416 \u65e5\u672c");
const std::string libraryFile = test::libraryFile("RQX5820usb");
const std::string controlFile = test::libraryFile("RQX5820UsbCtrl");

struct Library {
    explicit Library(const fs::path& file) : module(test::openLibrary(file)) {}
    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(platform::findFunction(module, name));
    }
    uint16_t open() const {
        uint16_t code = 0xABCD;
        function<decltype(zprusb_open)>("zprusb_open")(&code);
        return code;
    }
    void close() const { function<decltype(zprusb_close)>("zprusb_close")(); }

    platform::ModuleHandle module;
};

const std::string printerPath =
    "\\\\?\\usb#vid_5a2c&pid_0012#loading-" + std::to_string(platform::currentThreadId());
std::atomic<bool> deviceChecked = false;

/// One printer, to which nothing is sent.
const FakeControlFunctions idlePrinter{
    [](uint32_t deviceNumber) { return deviceNumber == 0 ? 0 : ~uint64_t{0}; },
    [](uint64_t) {},
    [](uint64_t, char* name) {
        std::strcpy(name, printerPath.c_str());
        return uint32_t{1};
    },
    [](uint64_t, uint8_t pipeNumber) { return uint64_t{1000} + pipeNumber; },
    [](uint64_t) {},
    [](uint32_t) { return ~uint64_t{0}; },
    [](uint64_t) {
        deviceChecked = true;
        return uint32_t{1};
    },
};

void connectPrinter() {
    const Library control(fs::absolute(folderName / controlFile));
    control.function<decltype(fakeControlInstall)>("fakeControlInstall")(&idlePrinter);
}

/// What a process does with the library, and what it then knows.
using Role = uint16_t (*)();

/// 0, which no case of it expects, also when the control library stays loaded.
uint16_t open() {
    const uint16_t code = Library(fs::absolute(folderName / libraryFile)).open();
    return test::isLoaded(fs::absolute(folderName / controlFile)) ? 0 : code;
}

/// The process ends with the library open.
uint16_t openByRelativePath() {
    connectPrinter();
    const Library library(folderName / libraryFile);
    fs::current_path(fs::temp_directory_path());
    return library.open();
}

uint16_t unloadTheOpenLibrary() {
    connectPrinter();
    const Library library(fs::absolute(folderName / libraryFile));
    const uint16_t code = library.open();
    platform::unloadModule(library.module);
    while (!deviceChecked) control::notifyDeviceChange();  // by the library's thread, in what is left of it
    return code;
}

uint16_t unloadTheClosedLibrary() {
    connectPrinter();
    uint16_t code = 0;
    for (int round = 0; round < 3 && code == 0; ++round) {
        const Library library(fs::absolute(folderName / libraryFile));
        code = library.open();
        library.close();
        platform::unloadModule(library.module);
    }
    return code;
}

const struct {
    const char* control;  // the control library in the library's folder
    const char* name;
    Role role;
    uint16_t code;
} cases[] = {
    {nullptr, "open-without-control", open, ZPRUSB_NO_CONTROL_LIBRARY},
    {"incomplete", "open-incomplete", open, ZPRUSB_NO_CONTROL_LIBRARY},
    {"complete", "open-relative", openByRelativePath, ZPRUSB_SUCCESS},
    {"complete", "unload-open", unloadTheOpenLibrary, ZPRUSB_SUCCESS},
    {"complete", "unload-closed", unloadTheClosedLibrary, ZPRUSB_SUCCESS},
};

}  // namespace

TEST(Loading, worksOrFailsByTheControlLibraryOfTheFolderAndEndsWellInWhateverState) {
    const fs::path parts = test::ownProgram().parent_path();
    const fs::path top =
        fs::temp_directory_path() / ("zprusb loading " + std::to_string(platform::currentThreadId()));
    fs::create_directories(top / folderName);
    fs::copy_file(parts / libraryFile, top / folderName / libraryFile);
    fs::current_path(top);
    for (const auto& [control, name, role, code] : cases) {
        const fs::path place = top / folderName / controlFile;
        if (control != nullptr)
            fs::copy_file(parts / control / controlFile, place, fs::copy_options::overwrite_existing);
        test::ChildProcess process(test::ownProgram(), {name});
        EXPECT_EQ(process.readLine(), std::to_string(code)) << name;
        noteCode(code);
        EXPECT_TRUE(process.endedWell()) << name;
    }
    fs::current_path(parts);
    fs::remove_all(top);
}

int main(int argc, char** argv) {
    for (const auto& [control, name, role, code] : cases) {
        if (argc != 2 || argv[1] != std::string(name)) continue;
        std::cout << role() << std::endl;
        return 0;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
