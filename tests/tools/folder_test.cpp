#include <set>
#include <thread>

#include "workshop.h"

namespace test {
namespace {

constexpr const char* small = R"("media": [{"code": 241, "width": 7620, "length": 5080}])";

std::string printers(const std::string& faults) {
    return std::string(R"({"printers": [{)") + small + "}]" + faults + "}";
}

class Folder : public Workshop {
protected:
    void waitFor(const std::string& file) {
        while (read(file).empty()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    Json nextEvent(ChildProcess& watching) { return Json::parse(watching.readLine(), nullptr, false); }

    const Bytes picture = png(quarters(30, 20, "RGBW"));
};

// As long as no data have gone out nothing can be on paper; once they have, nobody knows.
TEST_F(Folder, APictureIsPrintedOnceAlsoWhenTheToolIsKilled) {
    const std::tuple<const char*, const char*, const char*, std::vector<std::string>> moments[] = {
        {R"(, "faults": [{"command": "Print", "action": "never"}])",
         "in/printing/x.png",
         "in/printed/x.png",
         {"x.png", "y.png"}},
        {R"(, "faults": [{"imageByte": 100000, "action": "never"}])",
         "in/printing/x.png.started",
         "in/failed/x.png",
         {"y.png"}}};
    for (const auto& [fault, whileAlive, afterwards, events] : moments) {
        SCOPED_TRACE(fault);
        simulate(printers(fault));
        write("in/x.png", picture);
        ChildProcess first = start("zprusb print --watch in --json");
        waitFor(whileAlive);
        first.kill();
        simulate(printers(""));
        write("in/y.png", picture);
        ChildProcess second = start("zprusb print --watch in --json");
        for (const std::string& event : events) EXPECT_EQ(nextEvent(second)["image"], event);
        EXPECT_EQ(read(afterwards), picture);
    }
}

TEST_F(Folder, APictureWaitsForItsRestAndForThePrinter) {
    simulate(
        R"({"printers": [{"condition": "cover open"}], "timeline": [{"after": 4, "condition": "ready"}]})");
    const Bytes half(picture.begin(), picture.begin() + picture.size() / 2);
    write("in/a.png", picture);
    write("in/broken.png", half);
    ChildProcess watching = start("zprusb print --watch in --json");
    waitFor("err");  // where it says that the printer is not ready
    EXPECT_EQ(run("zprusb print --watch ./in").status, 3) << "another program is watching the folder";
    EXPECT_EQ(nextEvent(watching)["image"], "a.png");
    write("in/late.png", half);
    std::this_thread::sleep_for(std::chrono::seconds(2));  // it seems to be complete after one
    write("in/late.png", picture);
    std::set<std::string> names;
    for (int i = 0; i < 2; ++i) names.insert(nextEvent(watching)["image"]);
    EXPECT_EQ(names, (std::set<std::string>{"broken.png", "late.png"}));
    EXPECT_EQ(read("in/failed/broken.png"), half);
    EXPECT_EQ(read("in/printed/late.png"), picture);
}

TEST_F(Folder, PicturesGoToWhicheverPrinterIsReadyFirst) {
    simulate(std::string(R"({"printers": [{"secondsPerPage": 30, )") + small + R"(}, {"secondsPerPage": 30, )" +
             small + R"(}, {"condition": "cover open"}]})");
    write("a.png", picture);
    const Json pages = json("zprusb print a.png a.png --any")["pages"];
    EXPECT_EQ(pages[0]["printer"], 0);
    EXPECT_EQ(pages[1]["printer"], 1);
}

// The page goes on after a second, so the tool looks whether it was interrupted; or never, so it is left there.
TEST_F(Folder, CtrlCEndsThePageAndSaysWhatBecameOfIt) {
    for (const std::string action : {R"("late", "seconds": 1)", R"("never")"}) {
        simulate(printers(R"(, "faults": [{"imageByte": 200000, "action": )" + action + "}]"));
        write("in/x.png", picture);
        ChildProcess printing = start("zprusb print --watch in --json");
        waitFor("in/printing/x.png.started");
        if (!printing.interrupt()) GTEST_SKIP() << "Without a console nothing can be interrupted.";
        const std::string said = printing.readAll();
        EXPECT_TRUE(contains(said, "Interrupted")) << action;
        EXPECT_TRUE(contains(said, "of the page's 1620000 bytes went out; the page is incomplete.")) << action;
        EXPECT_TRUE(read("in/printed/x.png").empty());
    }
}

}  // namespace
}  // namespace test
