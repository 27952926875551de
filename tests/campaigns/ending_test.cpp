// A process ends in every state of the library.
#include <thread>

#include "campaign.h"
#include "support/role.h"
#include "support/system.h"

namespace {

void openPage() {
    uint16_t code = 0;
    EXPECT_EQ(zprusb_checkMediaInfo(0xF1, 85, 85, &code) & zprusb_startpage(nullptr, &code), 1u) << code;
}

/// Leaves a thread in the middle of an exchange that the printer never answers.
void waitForever() {
    while (zprusbsim_takeRequest(0, nullptr, 0) != 0) continue;
    zprusbsim_addFault(R"({"command": "GetStatus", "action": "never"})", nullptr, 0);
    std::thread([] { zprusb_status(nullptr); }).detach();
    while (zprusbsim_takeRequest(0, nullptr, 0) == 0) std::this_thread::yield();
}

constexpr struct {
    const char* name;
    void (*enter)();
} states[] = {
    {"closed", zprusb_close},
    {"open", [] {}},
    {"page open", openPage},
    {"closed with a page open", [] { openPage(), zprusb_close(); }},
    {"unplugged", [] { zprusbsim_unplug(0); }},
    {"in the middle of a time-out", waitForever},
};

/// Ends the process while the library is in the state of that name.
const test::Role ending("end", [](const std::string& name) {
    const PageFolder folder;
    connectPrinters(1, folder.path);
    if (zprusb_open(nullptr) == 0) return 1;
    for (const auto& state : states) {
        if (name == state.name) state.enter();
    }
    return 0;
});

}  // namespace

TEST(Endings, goWellWhateverTheLibraryIsDoing) {
    // The leak checker of this compiler reads the memory of threads that are gone when others are blocked.
    test::setEnvironment("ASAN_OPTIONS", "detect_leaks=0");
    for (unsigned round = 0; round < rounds(1, 20); ++round) {
        for (const auto& state : states)
            EXPECT_TRUE(test::ChildProcess(test::ownProgram(), {"end", state.name}).endedWell()) << state.name;
    }
}
