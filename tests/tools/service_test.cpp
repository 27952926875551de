/// Commands that change the printer, of both tools. A printer lives as long as the process that talks to it, so
/// what a command did is seen by its own output, and by its failure when the printer refuses its request.
#include <algorithm>
#include <numeric>

#include "settings.h"
#include "workshop.h"

namespace test {
namespace {

class Service : public Workshop {
protected:
    void writeText(const std::string& name, const std::string& text) {
        write(name, Bytes(text.begin(), text.end()));
    }

    Service() {
        write("curve", Bytes(1536, 7));
        write("short curve", Bytes(1535, 7));
        write("bytes", {0xAB, 0xCD});
        write("empty", {});
        writeText("firmware", "S10400001FDC\nS9030000FC\n");
    }
};

/// A command line, what is said about it, and the request that it makes by its name on the wire.
struct Line {
    std::string line, text;
    std::string request{};
    int status = 2;  // of a mistake
};

/// What its test is called after.
void PrintTo(const Line& line, std::ostream* stream) {
    *stream << line.line.substr(0, 60);
}

const Line deeds[] = {
    {"zprusb set button 2", "Set the button of printer 0 to 2.\n", "OperationButton"},
    {"zprusb set parameter 17", "Set the parameter of printer 0 to 17.\n", "SetPrinterParameter"},
    {R"(zprusb set name "Theke 3")", "Set the name of printer 0 to Theke 3.\n", "SetPrinterUniqueString"},
    {"zprusb reset-counter 6", "Counter 6 of printer 0 is zero now.\n", "SetEepromMaintenance"},
    {"zprusb blink", "Printer 0 flashes its LED.\n", "FlashLed"},
    {"zprusb reset", "Printer 0 resets itself.\n", "Reset"},
    {"zprusb-service eeprom read 0xA0 2", "  00a0  00 00 ", "GetEepromMaintenance"},
    {"zprusb-service eeprom write 160 0x0a1B ff --yes",
     "Wrote and verified 3 bytes of maintenance memory from address 0xa0 on.\n", "SetEepromMaintenance"},
    {"zprusb-service eeprom write 0xA0 --file bytes --yes", "2 bytes", "GetEepromMaintenance"},
    {"zprusb-service diagnose 3 1 2", "  0000  03 01 02 01 ", "SelfDiagnosis"},
    {"zprusb-service errorlog", "  0000  00 00 ", "GetErrorLog"},
    {"zprusb-service errorlog --clear --yes", "The error log is empty now.\n", "ResetErrorLog"},
    {"zprusb-service tonecurve load curve --curve 2 --yes", "Loaded tone curve 2.\n", "Update"},
    {"zprusb-service tonecurve reset --yes", "has forgotten its tone curves.\n", "Reset"},
    {"zprusb-service maintenance data 4 9", "  0000  04 09 ", "GetMaintenanceData"},
    {"zprusb-service maintenance set 1 2 3 4 5 0xFFFF --yes", "Set the six maintenance values.\n",
     "SetMaintenanceParams"},
    {"zprusb-service universal 4142 --yes", "41 42 ", "Universal"},
    {"zprusb-service model", "Model     SIMULATED\nName      SIMULATED PRINTER\nSerial    SIMULATED0001P",
     "GetModelName"},
    {"zprusb-service diagnose-data 3 1 2 --yes", "  0000  03 01 02 01 ", "SelfDiagnosis"},
    {"zprusb-service identifiers ffffffffffffffff", " selects a printer of model SIMULATED.\n", "GetModelName"},
};

const Line mistakes[] = {
    {"zprusb", "A command is missing"},
    {"zprusb prnit picture", "did you mean 'print'?"},
    {"zprusb list more", "'more' is not expected here"},
    {"zprusb status --wait=soon", "--wait takes a number of seconds"},
    {"zprusb info moon", "not 'moon'"},
    {"zprusb print", "Name the pictures to print"},
    {"zprusb print picture --copies 0", "--copies"},
    {"zprusb print picture --copies 1000", "--copies"},
    {"zprusb print picture --long 6", "--long"},
    {"zprusb print picture --size 6", "takes a size like 6x4"},
    {"zprusb print picture --size 0x4", "not '0x4'"},
    {"zprusb print picture --size 6x4ft", "not '6x4ft'"},
    {"zprusb print picture --size infxnan", "not 'infxnan'"},
    {"zprusb set button 3", "'3' is no value for 'button', which takes 1 or 2."},
    {"zprusb set parameter 4294967296", "which takes a number from 0 to 4294967295."},
    {R"(zprusb set name "")", "which takes a text of 1 to 23 bytes"},
    {"zprusb set name 123456789012345678901234", "which takes a text of 1 to 23 bytes"},
    {"zprusb set moon 1", "not 'moon'"},
    {"zprusb reset-counter 0", "not '0'"},
    {"zprusb-service", "A command is missing"},
    {"zprusb-service eeprom read 0xff 2", "pass the memory's end"},
    {"zprusb-service eeprom write 0 123 --yes", "'123' is no row of bytes"},
    {"zprusb-service eeprom write 0 --yes", "which bytes"},
    {"zprusb-service eeprom write 0 00 --file bytes --yes", "excludes"},
    {"zprusb-service eeprom write 0 --file empty --yes", "1 to 255 bytes", "", 3},
    {"zprusb-service eeprom restore bytes --yes", "256 bytes of a maintenance memory but 2.", "", 3},
    {"zprusb-service command reset", "The command is: reset KIND."},
    {"zprusb-service command reset 256 --yes", "'256' is no number from 0 to 255."},
    {"zprusb-service command moon", "name takes one of flash-led, reset, "},
    {"zprusb-service diagnose", "--results-only"},
    {"zprusb-service identifiers 00", "has 8 bytes, not 1"},
    {R"(zprusb-service tonecurve load "short curve" --curve 1 --yes)", "1535 bytes instead of 1536", "", 3},
    {"zprusb-service tonecurve load missing --curve 1 --yes", "does not exist", "", 3},
    {"zprusb-service universal " + std::string(496, '0') + " --yes", "more than 247"},
};

class EachDeed : public Service, public testing::WithParamInterface<Line> {};
INSTANTIATE_TEST_SUITE_P(Tools, EachDeed, testing::ValuesIn(deeds));

TEST_P(EachDeed, IsReportedAndSoIsItsRefusal) {
    simulate(R"({"printers": [{}]})");
    const Outcome done = run(GetParam().line);
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_TRUE(contains(done.out, GetParam().text));

    simulate(R"({"printers": [{}], "faults": [{"command": ")" + GetParam().request +
             R"(", "occurrence": "every", "action": "error", "number": 5}]})");
    const Outcome refused = run(GetParam().line);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_TRUE(contains(refused.err, "code 260"));
}

class EachMistake : public Service, public testing::WithParamInterface<Line> {};
INSTANTIATE_TEST_SUITE_P(Tools, EachMistake, testing::ValuesIn(mistakes));

TEST_P(EachMistake, IsExplained) {
    const Outcome outcome = run(GetParam().line);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(contains(outcome.err, GetParam().text));
}

TEST_F(Service, MemoryIsReadAsTextAsJsonAndIntoAFile) {
    simulate(R"({"printers": [{"counters": [70]}]})");
    EXPECT_EQ(json("zprusb-service eeprom read 0x60 1"), Json::parse(R"({"address": 96, "bytes": "46"})"));
    EXPECT_EQ(run("zprusb-service eeprom read 0 255 --out memory").out, "Wrote 255 bytes into memory.\n");
    EXPECT_TRUE(contains(run("zprusb-service eeprom read 9 4 --verbose").err,
                         "zprusb_getEepromMaintenance(9, out, 4, &code) = 1, code 0, "));
    const std::string all = json("zprusb-service eeprom read 0 255")["bytes"];
    EXPECT_EQ(tool::hexOf(read("memory"), ""), all);
    EXPECT_EQ(run("zprusb-service eeprom read 0x60 8").out,
              "  0060  46 00 00 00 00 00 00 00                          |F.......|\n");
}

TEST_F(Service, MemoryIsKeptBeforeItIsOverwrittenAndAReadOfLessFails) {
    simulate(R"({"printers": [{"counters": [70]}]})");
    EXPECT_EQ(run("zprusb-service eeprom dump memory").status, 0);
    Bytes wanted = read("memory");
    ASSERT_EQ(wanted.size(), 256u);
    EXPECT_EQ(wanted[0x60], 70);
    wanted[0] = wanted[255] = 9;
    write("memory", wanted);
    for (const std::string kept : {"memory.before", "memory.before-2"}) {
        EXPECT_EQ(json("zprusb-service eeprom restore memory --yes")["kept"], kept);
        EXPECT_EQ(read(kept)[0x60], 70);
    }
    simulate(R"({"faults": [{"command": "GetEepromMaintenance", "action": "short", "bytes": 20}]})");
    const Outcome outcome = run("zprusb-service eeprom read 0 40");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.err, "code 2600"));
}

TEST_F(Service, ADiagnosisThatFailsSaysSo) {
    simulate(R"({"printers": [{"condition": "cover open"}]})");
    const Outcome outcome = run("zprusb-service diagnose 1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.out, "The diagnosis failed."));
}

TEST_F(Service, OfSeveralPrintersNoneIsChangedUnlessItIsNamed) {
    simulate(R"({"printers": [{"serial": "A"}, {"serial": "B"}]})");
    for (const std::string command : {"eeprom write 0xa0 00", "firmware update firmware --target 1"}) {
        const Outcome outcome = run("zprusb-service " + command + " --yes");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(contains(outcome.err, "--printer: 0 (SIMULATEDA), 1 (SIMULATEDB)."));
        EXPECT_EQ(run("zprusb-service " + command + " --yes --printer 1").status, 0);
    }
}

TEST_F(Service, RawShowsWhatTheHeaderOfAnAnswerSays) {
    const Json normal = json("zprusb-service raw 03400000 --yes");
    EXPECT_EQ(normal["header"]["kind"], "normal");
    EXPECT_EQ(normal["header"]["code"], 0);
    const Json error = json("zprusb-service raw 03 41 0000 --yes");
    EXPECT_EQ(error["header"]["kind"], "error");
    EXPECT_EQ(error["header"]["code"], 2601);
    EXPECT_EQ(error["bytes"].get<std::string>().substr(0, 4), "0201");
}

TEST_F(Service, WithoutYesNothingIsSent) {
    simulate(R"({"printers": []})");  // to open the library would fail
    for (const std::string command :
         {"eeprom write 0 00", "errorlog --clear", "tonecurve load curve --curve 1", "tonecurve reset",
          "maintenance set 1 2 3 4 5 6", "universal 00", "raw 00", "firmware update firmware --target 1"}) {
        const Outcome outcome = run("zprusb-service " + command);
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(contains(outcome.err, "Say --yes to "));
    }
}

/// S-records of 32 bytes for each range of an image that begins at the address.
std::string records(const Bytes& image, uint32_t start, const std::vector<std::pair<size_t, size_t>>& ranges) {
    std::string text;
    for (const auto& [begin, end] : ranges) {
        for (size_t at = begin; at < end; at += 32) {
            Bytes fields = tool::littleEndianBytes(start + static_cast<uint32_t>(at), 4);
            std::ranges::reverse(fields);
            const auto data = std::span(image).subspan(at, std::min<size_t>(32, end - at));
            fields.insert(fields.begin(), static_cast<uint8_t>(data.size() + 5));
            fields.insert(fields.end(), data.begin(), data.end());
            fields.push_back(static_cast<uint8_t>(~std::accumulate(fields.begin(), fields.end(), 0)));
            text += "S3" + tool::hexOf(fields, "") + "\n";
        }
    }
    return text;
}

class Firmware : public Service {
protected:
    Firmware() : image(0x80000, 0xFF) {
        for (const auto& [begin, end] : ranges)
            for (size_t i = begin; i < end; ++i) image[i] = static_cast<uint8_t>(i * 7 + i / 256);
        writeText("größe.s37", records(image, start, {ranges[1], ranges[0]}) + endRecord);
    }

    static constexpr uint32_t start = 0x8000;
    const std::string endRecord = "S70500000000FA\n";
    const std::vector<std::pair<size_t, size_t>> ranges{{0, 0x10001}, {0x10400, 0x80000}};
    Bytes image;
};

TEST_F(Firmware, IsInspectedWithoutAPrinter) {
    simulate(R"({"printers": []})");
    const Json facts = json("zprusb-service firmware inspect größe.s37");
    EXPECT_EQ(facts["first"], start);
    EXPECT_EQ(facts["last"], start + 0x7FFFF);
    EXPECT_EQ(facts["sum"], std::accumulate(image.begin(), image.end(), 0u));
    EXPECT_EQ(facts["sumOfRecords"], std::accumulate(image.begin(), image.end(), 0u) - 0x3FF * 0xFF);
    EXPECT_EQ(facts["ranges"],
              Json::parse(R"([{"first": 32768, "last": 98304}, {"first": 99328, "last": 557055}])"));
    const std::string text = run("zprusb-service firmware inspect größe.s37").out;
    EXPECT_TRUE(contains(text, "\n  0x00018000  +.####"));

    const Outcome outcome = run("zprusb-service firmware inspect bytes");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_TRUE(contains(outcome.err, "code 3001"));
}

TEST_F(Firmware, ThatIsDoubtfulIsSentByForceOnly) {
    const std::string first = records(image, 0, {{0, 32}}), other = records(Bytes(32, 1), 16, {{0, 32}});
    const std::pair<std::string, std::string> cases[] = {
        {first, "It has no end record"},
        {first + "S5030007F5\n" + endRecord, "Its count record says 7, but before it 1 data record comes."},
        {first + other + endRecord, "to different bytes, first at 0x00000010;"},
        {first + endRecord + first, "After the end record 1 data record comes."},
    };
    const std::string update = "zprusb-service firmware update doubtful --target 1 --yes";
    for (const auto& [text, doubt] : cases) {
        writeText("doubtful", text);
        EXPECT_TRUE(contains(run("zprusb-service firmware inspect doubtful").out, doubt));
        const Outcome refused = run(update);
        EXPECT_EQ(refused.status, 3);
        EXPECT_TRUE(contains(refused.err, doubt));
        EXPECT_EQ(run(update + " --force").status, 0);
    }
    writeText("sound", first + "S5030001FB\n" + endRecord);
    EXPECT_EQ(json("zprusb-service firmware inspect sound")["warnings"], Json::array());
    EXPECT_TRUE(
        contains(run("zprusb-service firmware update sound --target 1 --dry-run").out, "Nothing was sent."));
}

TEST_F(Firmware, OutsideThePermittedRangeTellsBoth) {
    const std::string top = records(image, 0xFFFFFFC0, {{0, 16}, {48, 64}});
    writeText("top", top + endRecord);
    EXPECT_EQ(json("zprusb-service firmware inspect top")["ranges"][1]["last"], 0xFFFFFFFF);
    EXPECT_TRUE(contains(run("zprusb-service firmware inspect top").out, "  0xffffffc0  #..#\n"));
    const std::pair<std::string, std::string> cases[] = {
        {endRecord, "The file has no data;"},
        {top + records(image, 0, {{0, 16}}),
         "lie from 0x00000000 to 0xffffffff, 4294967296 bytes; permitted are"},
        {records(image, 0xFFFFFFF8, {{0, 16}}), "lie from 0xfffffff8 to 0x100000007, 16 bytes; permitted are"},
    };
    for (const auto& [text, sentence] : cases) {
        writeText("outside", text);
        const Outcome outcome = run("zprusb-service firmware inspect outside");
        EXPECT_EQ(outcome.status, 3);
        EXPECT_TRUE(contains(outcome.err, sentence));
    }
}

TEST_F(Firmware, ArrivesAsItIs) {
    const std::string update = "zprusb-service firmware update größe.s37 --target 9 --start 0x1234 --yes";
    simulate(R"({"printers": [{"serial": "FOX"}]})");
    const Outcome done = run(update);
    EXPECT_EQ(done.status, 0) << done.err;
    EXPECT_TRUE(
        contains(done.out, "has accepted the update.\nSent 524288 bytes of firmware to target 9 from "));
    EXPECT_TRUE(
        contains(done.out, "serial SIMULATEDFOX, firmware SIMULATE COMPONENT 1 1.00 before the update.\n"));
    EXPECT_TRUE(read("printed/SIMULATEDFOX-update-9.bin") == image);

    for (const char* fault : {R"("command": "Update", "action": "error", "number": 5)",
                              R"("imageByte": 100000, "action": "unplug")"}) {
        simulate(std::string(R"({"printers": [{"serial": "FOX"}], "output": "broken", "faults": [{)") + fault +
                 "}]}");
        const Outcome broken = run(update);
        EXPECT_EQ(broken.status, 1);
        EXPECT_TRUE(contains(broken.err, fault[1] == 'c' ? "code 3200" : "code 2"));
        EXPECT_TRUE(read("broken/SIMULATEDFOX-update-9.bin").empty());
    }
}

TEST(Settings, ValuesAreSentAsTheLibraryReadsThem) {
    const std::pair<const char*, Bytes> cases[] = {
        {"2", {2}}, {"305419896", {0x78, 0x56, 0x34, 0x12}}, {"Kö", {'K', 0xC3, 0xB6}}};
    ASSERT_EQ(tool::settings().size(), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(tool::settings()[i].encode(cases[i].first), cases[i].second) << cases[i].first;
}

}  // namespace
}  // namespace test
