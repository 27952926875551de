#include <thread>

#include "host.h"
#include "platform/thread.h"
#include "support/system.h"

using namespace test;

namespace {

class Configurations : public SimulatorTest {};

TEST_F(Configurations, ThatAreWrongAreRefusedWithTheirPlaceAndChangeNothing) {
    const struct {
        const char* json;
        const char* error;
    } cases[] = {
        {"{\n\n  \"printers\": [,]}", "line 3 is not JSON."},
        {R"({"printer": []})", "printer is not a known key here."},
        {R"({"dataTimeoutSeconds": -1})", "dataTimeoutSeconds must be a number of seconds from 0 to 86400."},
        {R"({"printers": [{"serial": "A"}, {"serial": "A"}]})",
         "printers[1].serial is the same as another printer's."},
        {R"({"printers": [{"counters": [1, -2]}]})",
         "printers[0].counters[1] must be a whole number from 0 to 4294967295."},
        {R"({"printers": [{"uniqueString": "123456789012345678901234"}]})",
         "printers[0].uniqueString must have at most 23 bytes."},
        {R"({"printers": [{"media": [{"code": 240, "width": 1}]}]})",
         "printers[0].media[0].length is missing."},
        {R"({"faults": [{"command": "GetStatus", "action": "unplug", "printer": 1}]})",
         "faults[0].printer must be the number of a printer."},
        {R"({"faults": [{"imageByte": 5, "action": "kind", "kind": 1}]})", "faults[0].action needs a command."},
        {R"({"dataTimeoutSeconds": 1e400})", "a number in it is too large."},
        {R"({"printers": [{"jobNumber": 1, "jobNumber": 2}]})", "jobNumber stands twice in one object."},
        {R"({"output": ""})", "output must not be empty."},
        {R"({"timeline": [{"condition": "ready"}]})", "timeline[0].after is missing."},
        {R"({"timeline": [{"after": 1, "errorGroup": 6}]})", "timeline[0].condition is missing."},
    };
    for (const auto& [json, error] : cases) {
        char sentence[ZPRUSBSIM_ERROR_SIZE] = "";
        EXPECT_EQ(zprusbsim_configure(json, sentence, sizeof sentence), 0u);
        EXPECT_STREQ(sentence, error) << json;
    }
    EXPECT_TRUE(Host().isPresent());
}

TEST_F(Configurations, SayWhatHappensWhen) {
    char error[ZPRUSBSIM_ERROR_SIZE] = "";
    const char* json =
        R"({"timeline": [{"after": 0.2, "plugged": false}, {"after": 0, "condition": "out of media"}]})";
    ASSERT_EQ(zprusbsim_configure(json, error, sizeof error), 1u) << error;
    while (state()["condition"] != "out of media") std::this_thread::yield();
    EXPECT_TRUE(state()["plugged"].get<bool>());
    while (state()["plugged"].get<bool>()) std::this_thread::yield();
}

int runTool(std::vector<std::string> words) {
    words.insert(words.begin(), {"--process", std::to_string(platform::currentProcessId())});
    test::ChildProcess process(ownProgram().parent_path() / programFile("zprusb-simulator"), words);
    process.closeInput();
    return process.exitStatus();
}

TEST_F(Configurations, AreChangedFromOtherProcesses) {
    const Host host;
    EXPECT_EQ(runTool({"show"}), 0);
    EXPECT_EQ(runTool({"set", "condition=device error", "errorGroup=6"}), 0);
    EXPECT_EQ(host.ask(getStatus), changed(success(Bytes(48), 0x11), {{2, 6}}));
    EXPECT_EQ(runTool({"fault", "command=GetStatus", "action=error", "number=5", "occurrence=every"}), 0);
    EXPECT_EQ(host.ask(getStatus), refusal(5, 0, 0, 0x11));
    EXPECT_EQ(runTool({"fault", "--clear"}), 0);
    EXPECT_EQ(runTool({"set", "condition=ready", "plugged=false"}), 0);
    EXPECT_FALSE(host.isPresent());
    EXPECT_EQ(runTool({"set", "condition=tired"}), 2);
}

TEST_F(Configurations, AreChangedFromOutsideAsLongAsSomebodyMayOpenThePrinters) {
    for (int i = 0; i < 2; ++i) {
        std::thread([] {
            Host().close();
            EXPECT_EQ(runTool({"show"}), 0) << "a thread lives that has opened a printer";
        }).join();
        while (runTool({"show"}) == 0) std::this_thread::yield();
    }
}

TEST_F(Configurations, SayAllThatAPrinterIs) {
    configure({{{"condition", "device error"},
                {"errorGroup", 6},
                {"errorDetail", 7},
                {"media", Json::array()},
                {"statusFlags", {0, 5}}}});
    const Host host;
    EXPECT_EQ(host.ask(getStatus), changed(success(Bytes(48), 0x11), {{2, 6}, {3, 7}, {49, 5}}));
    EXPECT_EQ(host.ask({0x02, 0x00, 0, 0}).size(), 11u);
    configure(Json::array());
    EXPECT_TRUE(host.ask(getStatus).empty()) << "the new printers end the pipes of the old ones";
    EXPECT_FALSE(host.isPresent());
    EXPECT_EQ(SDKUsb_Open(0), none);
}

}  // namespace
