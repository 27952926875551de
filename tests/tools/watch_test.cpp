#include "workshop.h"

namespace test {
namespace {

class Watch : public Workshop {};

// The faults come with the tool's requests, however slow the machine is; only the plug comes back by the clock.
TEST_F(Watch, EachChangeIsOneLineUntilCtrlC) {
    simulate(R"({"printers": [{}], "faults": [
        {"command": "GetStatus", "occurrence": 3, "action": "status", "number": 51},
        {"command": "GetStatus", "occurrence": 6, "action": "replug", "seconds": 10},
        {"command": "GetStatus", "occurrence": 8, "action": "unplug"}]})");
    ChildProcess watching = start("zprusb watch --json --interval 20");
    for (const int code : {0, 2103, 0, 2000, 0, 2000}) {
        const Json line = Json::parse(watching.readLine(), nullptr, false);
        ASSERT_TRUE(line.is_object());
        EXPECT_EQ(line["code"], code);
        EXPECT_EQ(line["ready"], code == 0);
        EXPECT_EQ(line["connected"], code != 2000);
    }
    if (!watching.interrupt()) GTEST_SKIP() << "Without a console nothing can be interrupted.";
    EXPECT_EQ(watching.readAll(), "");
    EXPECT_EQ(watching.exitStatus(), 0);
}

TEST_F(Watch, PeopleReadTheTimeAndTheStatus) {
    simulate(R"({"printers": [{"condition": "out of media"}]})");
    EXPECT_TRUE(contains(start("zprusb watch").readLine(), "  printer 0: not ready, code 21"));
}

}  // namespace
}  // namespace test
