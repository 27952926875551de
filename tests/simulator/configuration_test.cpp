#include "host.h"

using namespace test;

namespace {

class Configurations : public SimulatorTest {};

TEST_F(Configurations, ThatAreWrongAreRefusedWithTheirPlaceAndChangeNothing) {
    const struct {
        const char* json;
        const char* error;
    } cases[] = {
        {"{", "line 1 is not JSON."},
        {"{\n\n  \"printers\": [,]}", "line 3 is not JSON."},
        {"[]", "the text must be an object."},
        {R"({"printer": []})", "printer is not a known key here."},
        {R"({"output": 1})", "output must be a text."},
        {R"({"dataTimeoutSeconds": -1})", "dataTimeoutSeconds must be a number of seconds from 0 to 86400."},
        {R"({"printers": {}})", "printers must be a list of at most 128."},
        {R"({"printers": [1]})", "printers[0] must be an object."},
        {R"({"printers": [{"foreign": "no"}]})", "printers[0].foreign must be true or false."},
        {R"({"printers": [{}, {"serial": "0001"}]})", "printers[1].serial is the same as another printer's."},
        {R"({"printers": [{"serial": "a\\b"}]})", "printers[0].serial must be 1 to 20 letters and digits."},
        {R"({"printers": [{"condition": "tired"}]})", "printers[0].condition must be the name of a condition."},
        {R"({"printers": [{"jobNumber": 256}]})",
         "printers[0].jobNumber must be a whole number from 0 to 255."},
        {R"({"printers": [{"counters": [1, -2]}]})",
         "printers[0].counters[1] must be a whole number from 0 to 4294967295."},
        {R"({"printers": [{"uniqueString": "123456789012345678901234"}]})",
         "printers[0].uniqueString must have at most 23 bytes."},
        {R"({"printers": [{"media": [{"width": 1}]}]})", "printers[0].media[0].code is missing."},
        {R"({"printers": [{"media": [{"code": 1, "width": 1.5}]}]})",
         "printers[0].media[0].width must be a whole number from 1 to 100000."},
        {R"({"printers": [{"media": [{"code": 240, "width": 1}]}]})",
         "printers[0].media[0].length is missing."},
        {R"({"faults": [{"command": "GetStatus", "action": "unplug", "printer": 1}]})",
         "faults[0].printer must be the number of a printer."},
        {R"({"faults": [{"command": "Explode", "action": "unplug"}]})",
         R"(faults[0].command must be the name of a command or "any".)"},
        {R"({"faults": [{"command": "Print", "action": "dance"}]})",
         "faults[0].action must be the name of an action."},
        {R"({"faults": [{"command": "Print", "action": "late"}]})", "faults[0].seconds is missing."},
        {R"({"faults": [{"command": "Print", "action": "unplug", "seconds": 1}]})",
         "faults[0].seconds is not a known key here."},
        {R"({"faults": [{"imageByte": 5, "action": "kind", "kind": 1}]})", "faults[0].action needs a command."},
        {R"({"faults": [{"command": "Print", "action": "never", "occurrence": 0}]})",
         "faults[0].occurrence must be a whole number from 1 to 4294967295."},
    };
    for (const auto& [json, error] : cases) {
        char sentence[ZPRUSBSIM_ERROR_SIZE] = "";
        EXPECT_EQ(zprusbsim_configure(json, sentence, sizeof sentence), 0u);
        EXPECT_STREQ(sentence, error) << json;
    }
    EXPECT_TRUE(Host().isPresent());
}

TEST_F(Configurations, SayAllThatAPrinterIs) {
    configure(
        {{"printers",
          {{{"condition", "device error"}, {"errorGroup", 6}, {"errorDetail", 7}, {"media", Json::array()}}}}});
    const Host host;
    const Bytes status = host.ask({0x01, 0x00, 0, 0});
    EXPECT_EQ(Bytes(status.begin(), status.begin() + 10), (Bytes{1, 0, 6, 7, 0, 0, 0, 0x11, 48, 0}));
    EXPECT_EQ(host.ask({0x02, 0x00, 0, 0}).size(), 11u);
    configure({{"printers", Json::array()}});
    EXPECT_EQ(SDKUsb_Open(0), none);
}

TEST_F(Configurations, ThatReplaceOpenPrintersEndTheirPipes) {
    const Host host;
    configure();
    EXPECT_TRUE(host.ask({0x01, 0x00, 0, 0}).empty());
    EXPECT_FALSE(host.isPresent());
}

}  // namespace
