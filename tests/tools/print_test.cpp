#include <sstream>
#include <thread>

#include "workshop.h"

namespace test {
namespace {

// Small pages, so that printing them takes no time: 3 x 2 and 2 x 3 inch, and a variable length.
constexpr const char* smallMedia = R"("media": [
    {"code": 241, "width": 7620, "length": 5080}, {"code": 242, "width": 5080, "length": 7620},
    {"code": 243, "width": 7620, "length": 7620},
    {"code": 16, "width": 2540, "maximumLength": 12700,
     "sectionWidth": 2540, "sectionLengths": [1270, 2540, 0, 0, 0]}])";

class Print : public Workshop {
protected:
    Print() {
        simulate(std::string(R"({"printers": [{)") + smallMedia + "}]}");
        write("small.png", png(quarters(30, 20, "RGBW")));
    }

    /// Prints a picture and gives back the page.
    Picture pageOf(const Bytes& picture, const std::string& options = "") {
        write("picture", picture);
        json("zprusb print picture " + options);
        return printedPage(++pages);
    }

    int pages = 0;
};

TEST_F(Print, APictureOfThePageSizeArrivesUnchanged) {
    Picture picture{900, 600, {}};
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x)
            for (const uint32_t value : {x, y, (x * y) >> 4})
                picture.pixels.push_back(static_cast<uint8_t>(value));
    write("bunt – цвет.png", png(picture));
    const Json report = json(
        "zprusb print \"bunt – цвет.png\" --size 3x2 --copies 3 --option20 2 --option21 300 "
        "--option22 0");
    EXPECT_EQ(report["job"], 1);
    EXPECT_EQ(report["copies"], 3);
    EXPECT_EQ(report["media"]["code"], 241);
    const Json sheet = printedSheet(1);
    EXPECT_EQ(sheet["copies"], 3);
    EXPECT_EQ(sheet["option20"], 2);
    EXPECT_EQ(sheet["option21"], 300);
    EXPECT_EQ(sheet["option22"], 0);
    const Picture page = printedPage(1);
    EXPECT_EQ(page.width, picture.width);
    EXPECT_TRUE(page.pixels == picture.pixels);
}

TEST_F(Print, PeopleAreToldWhatWasPrinted) {
    const std::string page = "small.png on 3 x 2 inch (76.2 x 50.8 mm), 1 copy, as job 1 of printer 0";
    for (const std::string wait : {"", " --wait"}) {
        const Outcome outcome = run("zprusb print small.png" + wait);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.out, wait.empty() ? "Sent " + page + "; the printer is printing it.\n"
                                            : "Printed " + page + ".\n");
    }
}

TEST_F(Print, TheSizeIsTheNamedOneOrTheOneThatSuitsThePictureBest) {
    const struct {
        uint32_t width, height;
        std::string options;
        int code;
        uint32_t dotsAcross, dotsDown;
    } cases[] = {{300, 200, "", 241, 900, 600},
                 {200, 200, "", 243, 900, 900},
                 {400, 100, "", 16, 300, 1200},
                 {300, 200, "--size 2x3", 242, 600, 900},
                 {300, 200, "--size 76x51mm", 241, 900, 600},
                 {300, 200, "--size 50.8x76.2", 242, 600, 900},
                 {300, 200, "--size 3X3in", 243, 900, 900},
                 {300, 200, "--size 5×7.5cm", 242, 600, 900},
                 {300, 200, "--size 100x25.4", 16, 300, 1181},
                 {300, 200, "--size 1x4 --long 0", 16, 300, 1200},
                 {300, 200, "--size 1x4 --long 2", 16, 300, 300}};
    for (const auto& [width, height, options, code, dotsAcross, dotsDown] : cases) {
        SCOPED_TRACE(options);
        const Picture page = pageOf(png(quarters(width, height, "RGBW")), options);
        EXPECT_EQ(printedSheet(pages)["mediaCode"], code);
        EXPECT_EQ(page.width, dotsAcross);
        EXPECT_EQ(page.height, dotsDown);
    }
    EXPECT_EQ(printedSheet(pages)["section"], 2);
    EXPECT_EQ(run("zprusb print picture --size 1x4 --long 3").status, 1);
}

// Two sizes are that close to each other that only the name tells them apart.
TEST_F(Print, EachNameThatThePrinterListsIsASize) {
    simulate(R"({"printers": [{"media": [
        {"code": 241, "width": 7620, "length": 5080}, {"code": 242, "width": 7640, "length": 5080},
        {"code": 16, "width": 2540, "maximumLength": 12700}]}]})");
    std::istringstream names(run("zprusb info media").out);
    std::string line;
    std::getline(names, line);
    for (const int code : {241, 242, 16}) {
        std::getline(names, line);
        const std::string name = line.substr(2, line.find("  ", 2) - 2);
        EXPECT_EQ(json("zprusb print small.png --size \"" + name + "\"")["media"]["code"], code) << name;
    }
}

TEST_F(Print, ASizeThatIsNotOfferedIsRefusedWithTheOfferedOnes) {
    for (const std::string size : {"6x4", "3x2mm", "1x6", "1x2"}) {
        const Outcome outcome = run("zprusb print small.png --size " + size);
        EXPECT_EQ(outcome.status, 1) << size;
        EXPECT_TRUE(contains(outcome.err, "code 1006"));
        EXPECT_TRUE(contains(outcome.err, "offers: 3 x 2 inch (76.2 x 50.8 mm); 2 x 3"));
    }
}

TEST_F(Print, APortraitIsTurnedClockwiseToFillALandscapePage) {
    const Bytes portrait = png(quarters(200, 300, "RGBW"));
    EXPECT_EQ(coloursOf(pageOf(portrait, "--size 3x3")), "RGBW") << "a square page is no reason to turn";
    simulate(R"({"printers": [{"media": [{"code": 241, "width": 7620, "length": 5080}]}]})");
    EXPECT_EQ(coloursOf(pageOf(portrait)), "BRWG");
}

TEST_F(Print, FillingCutsBothSidesAlikeAndFittingLeavesWhiteMargins) {
    const Bytes wide = png(quarters(600, 100, "RGRB"));
    const Picture filled = pageOf(wide, "--size 3x3");
    EXPECT_EQ(coloursOf(filled), "RGRB");
    EXPECT_EQ(colourAt(filled, 1, 1), 'R');
    EXPECT_EQ(colourAt(filled, 48, 25), 'R');
    EXPECT_EQ(colourAt(filled, 52, 25), 'G');

    Picture stripe = quarters(600, 100, "GGGG");  // its white middle is what remains
    for (ptrdiff_t row = 0; row < 100; ++row)
        std::fill_n(stripe.pixels.begin() + 3 * (600 * row + 250), 300, uint8_t{255});
    const Picture cut = pageOf(png(stripe), "--size 3x3");
    EXPECT_EQ(colourAt(cut, 3, 50), 'W');
    EXPECT_EQ(colourAt(cut, 97, 50), 'W');

    EXPECT_EQ(coloursOf(pageOf(wide, "--size 3x3 --gravity right")), "GGBB");
    EXPECT_EQ(coloursOf(pageOf(wide, "--size 3x3 --gravity left --rotate 180")), "RRRR");
    EXPECT_EQ(colourAt(pageOf(wide, "--size 3x3 --border 5"), 4, 50), 'W');

    const Picture fitted = pageOf(wide, "--size 3x3 --fit");
    EXPECT_EQ(coloursOf(fitted), "WWWW");
    EXPECT_EQ(colourAt(fitted, 2, 45), 'R');
    EXPECT_EQ(colourAt(fitted, 97, 45), 'G');
    EXPECT_EQ(colourAt(fitted, 97, 55), 'B');
    EXPECT_EQ(colourAt(fitted, 97, 60), 'W');
}

TEST_F(Print, TransparentPartsAreWhitePaper) {
    Picture glass{30, 20, {}};
    for (int i = 0; i < 30 * 20; ++i) glass.pixels.insert(glass.pixels.end(), {255, 0, 0, 0});
    EXPECT_EQ(coloursOf(pageOf(png(glass, 4))), "WWWW");
}

/// A camera's note about the orientation.
Bytes noteOf(bool littleEndian, uint8_t orientation) {
    const Bytes intel = {'E',  'x', 'i', 'f', 0, 0, 'I', 'I', 42,          0, 8, 0, 0, 0, 1, 0,
                         0x12, 1,   3,   0,   1, 0, 0,   0,   orientation, 0, 0, 0, 0, 0, 0, 0};
    const Bytes motorola = {'E', 'x',  'i', 'f', 0, 0, 'M', 'M', 0, 42,          0, 0, 0, 8, 0, 1,
                            1,   0x12, 0,   3,   0, 0, 0,   1,   0, orientation, 0, 0, 0, 0, 0, 0};
    return segmentOf(0xE1, littleEndian ? intel : motorola);
}

TEST_F(Print, APhotoIsPrintedUprightWhateverWayTheCameraWasHeld) {
    const std::pair<uint8_t, const char*> cases[] = {{1, "RGBW"}, {2, "GRWB"}, {3, "WBGR"}, {4, "BWRG"},
                                                     {5, "RBGW"}, {6, "GWRB"}, {7, "WGBR"}, {8, "BRWG"},
                                                     {0, "RGBW"}, {9, "RGBW"}};
    for (const auto& [orientation, colours] : cases) {
        const bool onItsSide = orientation >= 5 && orientation <= 8;
        const Picture stored = onItsSide ? quarters(1600, 2400, colours) : quarters(240, 160, colours);
        const Bytes photo = jpeg(stored, 3, noteOf(orientation % 3 == 0, orientation));
        EXPECT_EQ(coloursOf(pageOf(photo, "--size 3x2")), "RGBW") << int{orientation};
    }
}

TEST_F(Print, APrinterThatFailsBeforeOrDuringThePageIsToldByItsCode) {
    const std::pair<std::string, std::string> failures[] = {
        {R"("condition": "out of media"}])", "code 21"},
        {R"("foreign": false}], "faults": [{"imageByte": 100000, "action": "closePipe"}])", "code 2600"},
        {R"("foreign": false}], "faults": [{"imageByte": 100000, "action": "unplug"}])", "code 2600"},
        {R"("foreign": false}], "faults": [{"imageByte": 1620000, "action": "unplug"}])", "code 2600"},
        {R"("foreign": false}], "faults": [{"command": "GetMediaInfo", "occurrence": "every",
            "action": "short", "bytes": 10}])",
         "code 2600"}};
    for (const auto& [setup, code] : failures) {
        simulate(std::string(R"({"printers": [{)") + smallMedia + ", " + setup + "}");
        const Outcome outcome = run("zprusb print small.png");
        EXPECT_EQ(outcome.status, 1) << setup;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(contains(outcome.err, code));
    }
}

// The first program's printer takes no more data, so that it keeps the printer until it gives up.
TEST_F(Print, APrinterThatAnotherProgramUsesIsNotWaitedForLongerThanAskedFor) {
    const std::string shared = std::string(R"({"printers": [{"serial": "SHARED", )") + smallMedia + "}]";
    simulate(shared + R"(, "faults": [{"imageByte": 100000, "action": "never"}]})");
    ChildProcess first = start("zprusb print small.png --json --timeout 20");
    while (read("err").empty()) std::this_thread::yield();  // it says after a second that it waits
    EXPECT_EQ(run("zprusb status").out, "printer 0: busy\n");
    simulate(shared + "}");
    for (const std::string command : {"list --no-wait", "info --wait 1", "print small.png --no-wait"}) {
        const Outcome outcome = run("zprusb " + command + " --json");
        EXPECT_EQ(outcome.status, 4) << command;
        EXPECT_EQ(Json::parse(outcome.out)["error"]["name"], "PRINTER_BUSY");
    }
    EXPECT_EQ(json("zprusb print small.png --wait")["printed"], true);
    EXPECT_EQ(first.exitStatus(), 1);
    EXPECT_EQ(Json::parse(first.readAll())["error"]["code"], 2600);
}

}  // namespace
}  // namespace test
