// A control library that returns anything.
#include <cstring>
#include <random>

#include "calls.h"
#include "fake_control_library.h"

namespace {

uint32_t anyBelow(size_t limit) {
    static std::mt19937 random(1);
    return static_cast<uint32_t>(random() % limit);
}

/// Handles in and out of the range of the device table, and none.
uint64_t anyHandle() {
    constexpr uint64_t handles[] = {
        0,           1, 5, 127, 128, 129, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x100000000, ~uint64_t{0} - 1,
        ~uint64_t{0}};
    return handles[anyBelow(std::size(handles))];
}

/// Names of all lengths, of printers and of others, and one without an end.
uint32_t anyName(uint64_t, char* name) {
    constexpr size_t capacity = 1024;
    const std::string path = "\\\\?\\usb#vid_5a2c&pid_0012#nonsense";
    const size_t length = anyBelow(4) == 0 ? anyBelow(path.size()) : path.size();
    std::memset(name, anyBelow(4) == 0 ? 'x' : 0, capacity);
    std::memcpy(name, path.data(), length);
    return anyBelow(3);
}

uint64_t anyPipe(uint64_t, uint8_t) {
    return anyBelow(2) == 0 ? ~uint64_t{0} : 0x7FFF0000 + anyBelow(1000);  // nothing that is open
}

const FakeControlFunctions nonsense{[](uint32_t) { return anyHandle(); },
                                    [](uint64_t) {},
                                    anyName,
                                    anyPipe,
                                    [](uint64_t) {},
                                    [](uint32_t) { return anyHandle(); },
                                    [](uint64_t) { return anyBelow(2); }};

}  // namespace

TEST(ControlLibrary, mayReturnAnything) {
    fakeControlInstall(&nonsense);
    for (int round = 0; round < 20; ++round) {
        zprusb_open(nullptr);
        for (int listing = 0; listing < 20; ++listing) {
            listPrinters();
            zprusb_selectPrinter(static_cast<uint8_t>(anyBelow(256)), nullptr);
            uint16_t code = 0xABCD;
            EXPECT_TRUE(zprusb_status(&code) == 0) << code;
        }
        zprusb_close();
    }
}
