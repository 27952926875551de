// A write of the system that fails after a part. No pipe here can be brought to that, so the function is
// replaced in this program.
#include <gtest/gtest.h>

#include "../../../src/platform/windows/system.h"
#include "support/system.h"
#include "transfer.h"

namespace {

bool failing = false;

BOOL WINAPI writeOrFail(HANDLE file, LPCVOID bytes, DWORD length, LPDWORD written, LPOVERLAPPED overlapped) {
    static const auto write = reinterpret_cast<decltype(&WriteFile)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "WriteFile")));
    if (!failing) return write(file, bytes, length, written, overlapped);
    *written = length - 1;
    return FALSE;
}

}  // namespace

extern "C" decltype(&WriteFile) const __imp_WriteFile = writeOrFail;

TEST(Pipes, thatFailAfterAPartFail) {
    const test::Pipe pipe;
    Transfer write{pipe.writer, {'a', 'b', 'c'}};
    failing = true;
    writeAll(&write);
    failing = false;
    EXPECT_FALSE(write.succeeded);
    EXPECT_EQ(write.count, 2u);
}
