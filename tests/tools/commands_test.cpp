#include <zprusb.h>

#include "workshop.h"

namespace test {
namespace {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

/// One line that starts with the program's name.
AssertionResult isSentence(const std::string& text) {
    const bool one = text.starts_with("zprusb: ") && text.find('\n') + 1 == text.size();
    return one ? AssertionSuccess() : AssertionFailure() << "not one sentence: '" << text << "'";
}

constexpr const char* twoPrinters = R"({"printers": [
    {"uniqueString": "kiosk left", "counters": [70, 1, 2, 3, 4, 5, 4000000000], "jobNumber": 9,
     "media": [{"code": 241, "width": 15240, "length": 10160},
               {"code": 16, "width": 12700, "maximumLength": 30480}]},
    {"uniqueString": "kiosk right", "condition": "device error", "errorGroup": 6, "errorDetail": 11}]})";

class Commands : public Workshop {};

TEST_F(Commands, ListNamesEveryPrinter) {
    simulate(twoPrinters);
    EXPECT_EQ(zprusb({"list"}).out, "0  kiosk left\n1  kiosk right\n");
    EXPECT_EQ(json({"list"}), Json::parse(R"([{"printer": 0, "name": "kiosk left"},
                                              {"printer": 1, "name": "kiosk right"}])"));
}

TEST_F(Commands, ASimulatorThatIsWronglyConfiguredSaysWhyThereIsNoPrinter) {
    simulate(R"({"printers": [{}, {"speed": 1}]})");
    EXPECT_TRUE(contains(zprusb({"list"}).err,
                         "ZPRUSB_SIMULATOR: printers[1].speed is not a known key here, so "
                         "there is no simulated printer.\n"));
}

TEST_F(Commands, StatusNamesTheCodeOfThePrinterThatIsNotReady) {
    simulate(twoPrinters);
    const Outcome ready = zprusb({"status"});
    EXPECT_EQ(ready.status, 0);
    EXPECT_EQ(ready.out, "printer 0: ready\n");
    EXPECT_EQ(ready.err, "");

    const Outcome failed = zprusb({"status", "--printer", "1"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.out, "printer 1: not ready\n");
    EXPECT_TRUE(isSentence(failed.err));
    EXPECT_TRUE(contains(failed.err, "code 2309: The printer reports a device error"));

    const Outcome both = zprusb({"--json", "status", "--all"});
    EXPECT_EQ(both.status, 1);
    const Json list = Json::parse(both.out);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["code"], 0);
    EXPECT_EQ(list[1]["code"], 2309);
    EXPECT_EQ(list[1]["ready"], false);
}

TEST_F(Commands, InfoDecodesTheRecords) {
    simulate(twoPrinters);
    const Json info = json({"info"});
    EXPECT_EQ(info["media"][0]["code"], 241);
    EXPECT_EQ(info["media"][0]["width"], 15240);
    EXPECT_EQ(info["media"][1]["variable"], true);
    EXPECT_EQ(info["media"][1]["longest"], 30480);
    EXPECT_EQ(info["firmware"].size(), 7u);
    EXPECT_EQ(info["counters"], Json::parse("[70, 1, 2, 3, 4, 5, 4000000000]"));
    EXPECT_EQ(info["status-bytes"]["jobNumber"], 9);
    EXPECT_EQ(info["unique-string"], "kiosk left");
    EXPECT_EQ(info["device-error"], Json::parse(R"({"group": 0, "detail": 0})"));
    EXPECT_EQ(json({"info", "device-error", "--printer", "1"})["device-error"],
              Json::parse(R"({"group": 6, "detail": 11})"));

    EXPECT_EQ(zprusb({"info", "media", "counters"}).out,
              "media\n"
              "  6 x 4 inch (152.4 x 101.6 mm)                 code 0xf1\n"
              "  5 inch (127 mm) wide, up to 304.8 mm long     code 0x10\n"
              "counters\n"
              "  counter 0 (permanent): 70\n"
              "  counter 1: 1\n  counter 2: 2\n  counter 3: 3\n  counter 4: 4\n  counter 5: 5\n"
              "  counter 6: 4000000000\n");
}

TEST_F(Commands, RawInfoShowsEveryByteOfEveryRecord) {
    const Json info = json({"info", "--raw"});
    std::vector<size_t> sizes, expected;
    for (const auto& [word, record] : info.items())
        if (word != "printer") sizes.push_back(record.get<std::string>().size() / 2);
#define SIZE_OF_RECORD(tag, name, size, content) expected.push_back(size);
    ZPRUSB_INFO_TAGS(SIZE_OF_RECORD)
#undef SIZE_OF_RECORD
    // JSON objects are read in the order of their words.
    std::ranges::sort(sizes);
    std::ranges::sort(expected);
    EXPECT_EQ(sizes, expected);
}

TEST_F(Commands, WithoutAPrinterEveryCommandSaysSo) {
    simulate(R"({"printers": []})");
    const std::string image = write("picture.png", png(quarters(30, 20, "RGBW")));
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"list"},
                                                      {"status"},
                                                      {"status", "--all", "--json"},
                                                      {"info"},
                                                      {"print", image}}) {
        const Outcome outcome = zprusb(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments[0];
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(isSentence(outcome.err));
        EXPECT_TRUE(contains(outcome.err, "code 1004: No printer was found. Connect the printer"));
    }
}

TEST_F(Commands, APrinterThatIsNotThereIsRefused) {
    const Outcome outcome = zprusb({"status", "--printer", "7"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.err, "code 1008"));
}

TEST_F(Commands, WrongUsageIsExplainedAndPrintsNothing) {
    const std::string image = write("picture.png", png(quarters(30, 20, "RGBW")));
    const std::vector<std::string> wrong[] = {{},
                                              {"prnit", image},
                                              {"list", "more"},
                                              {"--printer", "128", "status"},
                                              {"--printer", "-1", "status"},
                                              {"info", "moon"},
                                              {"print"},
                                              {"print", image, "--copies", "0"},
                                              {"print", image, "--copies", "1000"},
                                              {"print", image, "--long", "6"},
                                              {"print", image, "--size", "6"},
                                              {"print", image, "--size", "0x4"},
                                              {"print", image, "--size", "6x4cm"},
                                              {"print", image, "--size", "infxnan"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome outcome = zprusb(arguments);
        EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.out, "") << testing::PrintToString(arguments);
        EXPECT_NE(outcome.err, "") << testing::PrintToString(arguments);
    }
}

TEST_F(Commands, AFileThatIsNoGoodPictureIsRefusedInOneSentence) {
    const Bytes goodPng = png(quarters(300, 200, "RGBW"));
    const Bytes goodJpeg = jpeg(quarters(300, 200, "RGBW"));
    const auto half = [](const Bytes& bytes) { return Bytes(bytes.begin(), bytes.begin() + bytes.size() / 2); };
    Bytes huge = png(quarters(30, 20, "RGBW"));
    huge[18] = huge[22] = 0x30;  // the third of four bytes of width and height: 12318 x 12308 pixels
    const std::string text = "no picture";
    const std::pair<std::string, std::string> files[] = {
        {"missing.png", "does not exist"},
        {".", "is not a file"},
        {write("empty.png", {}), "is not a PNG or JPEG"},
        {write("text.png", Bytes(text.begin(), text.end())), "is not a PNG or JPEG"},
        {write("half.png", half(goodPng)), "ends in the middle"},
        {write("half.jpg", half(goodJpeg)), "ends in the middle"},
        {write("huge.png", huge), "million pixels"}};
    for (const auto& [path, reason] : files) {
        const Outcome outcome = zprusb({"print", path});
        EXPECT_EQ(outcome.status, 2) << path;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(isSentence(outcome.err));
        EXPECT_TRUE(contains(outcome.err, path));
        EXPECT_TRUE(contains(outcome.err, reason));
    }
}

TEST_F(Commands, HelpAndVersionNeedNoPrinter) {
    simulate(R"({"printers": []})");
    EXPECT_TRUE(zprusb({"--version"}).out.starts_with("zprusb 0."));
    const std::pair<const char*, std::vector<std::string>> commands[] = {
        {"zprusb", {"list", "status", "watch", "info", "print", "set", "reset-counter", "blink", "reset"}},
        {"zprusb-service", {"eeprom", "diagnose", "errorlog", "tonecurve", "maintenance", "universal", "raw"}}};
    for (const auto& [program, words] : commands) {
        for (const std::string& command : words) {
            const Outcome outcome = run(program, {command, "--help"});
            EXPECT_EQ(outcome.status, 0);
            EXPECT_TRUE(contains(outcome.out, std::string(program) + " " + command));
        }
    }
}

}  // namespace
}  // namespace test
