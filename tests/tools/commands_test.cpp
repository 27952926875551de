#include <zprusb.h>

#include <set>

#include "workshop.h"

namespace test {
namespace {

bool isSentence(const std::string& text) {
    return text.starts_with("zprusb: ") && text.find('\n') + 1 == text.size();
}

constexpr const char* twoPrinters = R"({"printers": [
    {"serial": "LEFT", "uniqueString": "kiosk left", "counters": [70, 1, 2, 3, 4, 5, 4000000000], "jobNumber": 9,
     "media": [{"code": 241, "width": 15240, "length": 10160},
               {"code": 16, "width": 12700, "maximumLength": 30480}]},
    {"serial": "RIGHT", "uniqueString": "kiosk right", "condition": "device error", "errorGroup": 6, "errorDetail": 11}]})";

class Commands : public Workshop {};

TEST_F(Commands, ListNamesEveryPrinter) {
    simulate(twoPrinters);
    EXPECT_EQ(run("zprusb list").out, "0  kiosk left\n1  kiosk right\n");
    EXPECT_EQ(json("zprusb list"), Json::parse(R"({"printers": [
        {"printer": 0, "name": "kiosk left", "serial": "SIMULATEDLEFT"},
        {"printer": 1, "name": "kiosk right", "serial": "SIMULATEDRIGHT"}]})"));
}

TEST_F(Commands, ASimulatorThatIsWronglyConfiguredSaysWhyThereIsNoPrinter) {
    simulate(R"({"printers": [{}, {"speed": 1}]})");
    EXPECT_TRUE(contains(run("zprusb list").err,
                         "ZPRUSB_SIMULATOR: printers[1].speed is not a known key here, "
                         "so there is no simulated printer.\n"));
}

TEST_F(Commands, StatusNamesTheCodeOfThePrinterThatIsNotReady) {
    simulate(twoPrinters);
    const Outcome ready = run("zprusb status");
    EXPECT_EQ(ready.status, 0);
    EXPECT_EQ(ready.out, "printer 0: ready\n");
    EXPECT_EQ(ready.err, "");

    const Outcome failed = run("zprusb status --printer \"kiosk right\"");
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.out, "printer 1: not ready\n");
    EXPECT_TRUE(isSentence(failed.err));
    EXPECT_TRUE(contains(failed.err, "code 2309: The printer reports a device error"));

    const Outcome both = run("zprusb --json status --all");
    EXPECT_EQ(both.status, 1);
    const Json list = Json::parse(both.out)["printers"];
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["code"], 0);
    EXPECT_EQ(list[1]["code"], 2309);
    EXPECT_EQ(list[1]["ready"], false);
}

TEST_F(Commands, InfoDecodesTheRecords) {
    simulate(twoPrinters);
    const Json info = json("zprusb info");
    EXPECT_EQ(info["media"][0]["code"], 241);
    EXPECT_EQ(info["media"][0]["width"], 15240);
    EXPECT_EQ(info["media"][1]["variable"], true);
    EXPECT_EQ(info["media"][1]["longest"], 30480);
    EXPECT_EQ(info["firmware"].size(), 7u);
    EXPECT_EQ(info["counters"], Json::parse("[70, 1, 2, 3, 4, 5, 4000000000]"));
    EXPECT_EQ(info["status-bytes"]["jobNumber"], 9);
    EXPECT_EQ(info["unique-string"], "kiosk left");
    EXPECT_EQ(info["device-error"], Json::parse(R"({"group": 0, "detail": 0})"));
    EXPECT_EQ(json("zprusb info device-error --printer 1")["device-error"],
              Json::parse(R"({"group": 6, "detail": 11})"));

    EXPECT_EQ(run("zprusb info media counters").out,
              "media\n"
              "  6 x 4 inch (152.4 x 101.6 mm)                 code 0xf1\n"
              "  5 inch (127 mm) wide, up to 304.8 mm long     code 0x10\n"
              "counters\n"
              "  counter 0 (permanent): 70\n"
              "  counter 1: 1\n  counter 2: 2\n  counter 3: 3\n  counter 4: 4\n  counter 5: 5\n"
              "  counter 6: 4000000000\n");
}

TEST_F(Commands, RawInfoShowsEveryByteOfEveryRecord) {
    const Json info = json("zprusb info --raw");
    std::multiset<size_t> sizes, expected;  // JSON objects are read in the order of their words
    for (const auto& [word, record] : info.items())
        if (word != "printer") sizes.insert(record.get<std::string>().size() / 2);
#define SIZE_OF_RECORD(tag, name, size, content) expected.insert(size);
    ZPRUSB_INFO_TAGS(SIZE_OF_RECORD)
#undef SIZE_OF_RECORD
    EXPECT_EQ(sizes, expected);
}

TEST_F(Commands, WithoutThePrinterEveryCommandSaysSo) {
    simulate(R"({"printers": []})");
    write("picture", png(quarters(30, 20, "RGBW")));
    for (const std::string command : {"list", "status", "status --all --json", "info", "print picture"}) {
        const Outcome outcome = run("zprusb " + command);
        EXPECT_EQ(outcome.status, 5) << command;
        EXPECT_EQ(outcome.out.empty(), command.find("json") == std::string::npos);
        EXPECT_TRUE(isSentence(outcome.err));
        EXPECT_TRUE(contains(outcome.err, "code 1004: No printer was found. Connect the printer"));
    }
    simulate("{}");
    EXPECT_TRUE(contains(run("zprusb status --printer 7").err, "code 1008"));
}

TEST_F(Commands, AFileThatIsNoGoodPictureIsRefusedInOneSentence) {
    write("empty.png", {});
    write("text.png", {'t', 'e', 'x', 't'});
    const std::pair<std::string, std::string> files[] = {{"missing.png", "does not exist"},
                                                         {".", "is not a file"},
                                                         {"empty.png", "is not a PNG or JPEG"},
                                                         {"text.png", "is not a PNG or JPEG"}};
    for (const auto& [path, reason] : files) {
        const Outcome outcome = run("zprusb print " + path);
        EXPECT_EQ(outcome.status, 3) << path;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(isSentence(outcome.err));
        EXPECT_TRUE(contains(outcome.err, path));
        EXPECT_TRUE(contains(outcome.err, reason));
    }
}

TEST_F(Commands, NamesOfPrintersCantMoveTheCursorOrTurnTheText) {
    simulate(R"({"printers": [{"uniqueString": "a\u001b[2Jb\u009bc\u202edä"}]})");
    EXPECT_EQ(run("zprusb list").out, "0  a?[2Jb?c?dä\n");
    EXPECT_EQ(json("zprusb list")["printers"][0]["name"], "a?[2Jb?c?dä");
    EXPECT_TRUE(contains(run("zprusb print a\u202eb.png").err, "'a?b.png' does not exist."));
}

TEST_F(Commands, ADeploymentGivesTheCodesItsOwnWords) {
    const std::string words = R"({"2103": {"meaning": "No paper.", "remedy": "Fill in paper."}})";
    write("words.json", Bytes(words.begin(), words.end()));
    simulate(R"({"printers": [{"condition": "out of media"}]})");
    EXPECT_TRUE(contains(run("zprusb status --words words.json").err, "code 2103: No paper. Fill in paper."));
}

TEST_F(Commands, ResultsThatNobodyTakesAreAnError) {
    write("picture", png(quarters(30, 20, "RGBW")));
    for (const std::string command : {"list", "status --all", "info", "print picture", "print picture picture",
                                      "watch", "set name x", "reset-counter all", "blink", "reset", "doctor"}) {
        ChildProcess process = start("zprusb " + command);
        process.closeOutput();
        EXPECT_EQ(process.exitStatus(), 1) << command;
        const Bytes told = read("err");
        const std::string errors(told.begin(), told.end());
        EXPECT_TRUE(isSentence(errors)) << command;
        EXPECT_TRUE(contains(errors, "The output can't be written."));
    }
}

TEST_F(Commands, HelpAndVersionNeedNoPrinter) {
    simulate(R"({"printers": []})");
    EXPECT_TRUE(run("zprusb --version").out.starts_with("zprusb 0."));
    EXPECT_TRUE(contains(run("zprusb print --help").out, "zprusb print [OPTIONS] [image...]"));
}

}  // namespace
}  // namespace test
