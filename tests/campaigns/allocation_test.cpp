// The n-th piece of memory that the library asks for is not there, for every n: once, and from there on.
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <set>

#include "api/internal.h"
#include "campaign.h"
#include "support/system.h"

namespace {

std::atomic<bool> watched{false};    // the library is at work, and nobody else
std::atomic<long> pieces{0};         // that it took and has not given back
std::atomic<long> untilFailure{-1};  // pieces that it still gets; negative: all
std::atomic<bool> failOnce{true};
std::atomic<bool> failed{false};

/// Counts a piece that is asked for.
/// @return whether it is given.
bool give() {
    if (!watched) return true;
    const bool given = untilFailure < 0 || untilFailure-- > 0;
    if (given) {
        ++pieces;
    } else {
        failed = true;
        untilFailure = failOnce ? -1 : 0;
    }
    return given;
}

}  // namespace

// The linker leads the calls of malloc() and its like here.
#pragma GCC visibility push(default)
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* memory);

void* __wrap_malloc(size_t size) {
    return give() ? __real_malloc(size) : nullptr;
}

void* __wrap_calloc(size_t count, size_t size) {
    return give() ? __real_calloc(count, size) : nullptr;
}

void __wrap_free(void* memory) {
    if (watched && memory != nullptr) --pieces;
    __real_free(memory);
}
}
#pragma GCC visibility pop

namespace {

struct Allocations : Campaign {
    Allocations() {
        std::filesystem::create_directories(folder.path);
        std::ofstream(firmware) << "S107100001020304DE\n";
    }

    /// Opens the library, does all that takes memory, and closes it. The long form prints as well: when the
    /// acknowledgement of a page can't be read, the printer takes the next requests for data, and the library
    /// waits 10 s for an answer to them.
    /// @return the code of the first step that failed.
    uint16_t use() const {
        const std::string path = firmware.string();
        uint16_t code = ZPRUSB_SUCCESS;
        watched = true;
        uint32_t success = zprusb_openForUpdate(0, &code);
        if (success != 0) success = zprusb_status(&code);
        if (success != 0 && rounds(0, 1) != 0) success = printPage(1, &code);
        if (success != 0)
            zprusb_freeUpdateImage(
                zprusb_loadUpdateImage(path.c_str(), nullptr, nullptr, nullptr, nullptr, &code));
        zprusb_close();
        watched = false;
        untilFailure = -1;
        return code;
    }

    /// Fails each piece in turn.
    void failEach(bool once) {
        const unsigned stride = rounds(5, 1);
        EXPECT_EQ(use(), ZPRUSB_SUCCESS);
        const long held = pieces;
        std::set<uint16_t> codes;
        failOnce = once;
        failed = true;
        for (long n = 0; failed; ++n) {
            SCOPED_TRACE(testing::Message() << "after " << n << " pieces");
            failed = false;
            untilFailure = n;
            const uint16_t code = use();
            EXPECT_TRUE(isDocumented(code) && (failed || code == ZPRUSB_SUCCESS)) << "code " << code;
            EXPECT_EQ(pieces, held);
            codes.insert(code);
            noteCode(code);
            if (n % stride == 0) {
                EXPECT_EQ(use(), ZPRUSB_SUCCESS) << "the next use";
            }
        }
        EXPECT_TRUE(codes.contains(ZPRUSB_OUT_OF_MEMORY));
    }

    /// Twice, as the system makes some things once.
    void failEachAndLookForRests(bool once) {
        failEach(once);
        const unsigned resources = test::resourceCount();
        failEach(once);
        EXPECT_TRUE(test::resourcesFallTo(resources));
    }

    const std::filesystem::path firmware = folder.path / "firmware";
};

}  // namespace

TEST_F(Allocations, failOnceWithTheirCodesAndLeaveNothing) {
    failEachAndLookForRests(true);
}

TEST_F(Allocations, failFromOneOnWithTheirCodesAndLeaveNothing) {
    failEachAndLookForRests(false);
}
