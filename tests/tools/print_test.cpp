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
    Print() { simulate(std::string(R"({"printers": [{)") + smallMedia + "}]}"); }
};

TEST_F(Print, APictureOfThePageSizeArrivesUnchanged) {
    Picture picture{900, 600, {}};
    for (uint32_t y = 0; y < picture.height; ++y)
        for (uint32_t x = 0; x < picture.width; ++x)
            for (const uint32_t value : {x, y, (x * y) >> 4})
                picture.pixels.push_back(static_cast<uint8_t>(value));
    const Json report = json({"print", write("bunt – цвет.png", png(picture)), "--size", "3x2", "--copies", "3",
                              "--option20", "2", "--option21", "300", "--option22", "0"});
    EXPECT_EQ(report["job"], 1);
    EXPECT_EQ(report["copies"], 3);
    EXPECT_EQ(report["media"]["code"], 241);
    EXPECT_EQ(printedSheet(1)["copies"], 3);
    EXPECT_EQ(printedSheet(1)["option20"], 2);
    EXPECT_EQ(printedSheet(1)["option21"], 300);
    EXPECT_EQ(printedSheet(1)["option22"], 0);
    const Picture page = printedPage(1);
    EXPECT_EQ(page.width, picture.width);
    EXPECT_EQ(page.pixels == picture.pixels, true);
}

TEST_F(Print, PeopleAreToldWhatWasPrinted) {
    const std::string image = write("picture.png", png(quarters(30, 20, "RGBW")));
    const Outcome outcome = zprusb({"print", image});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out,
              "Printed " + image + " on 3 x 2 inch (76.2 x 50.8 mm), 1 copy, as job 1 of printer 0.\n");
}

TEST_F(Print, TheSizeIsTheNamedOneOrTheOneThatSuitsThePictureBest) {
    struct Case {
        uint32_t width, height;
        const char* size;  // null: the tool chooses
        int code;
        uint32_t dotsAcross, dotsDown;
    };
    const Case cases[] = {{300, 200, nullptr, 241, 900, 600},   {200, 200, nullptr, 243, 900, 900},
                          {400, 100, nullptr, 16, 300, 1200},   {300, 200, "2x3", 242, 600, 900},
                          {300, 200, "76x51mm", 241, 900, 600}, {300, 200, "50.8x76.2", 242, 600, 900},
                          {300, 200, "3x3in", 243, 900, 900},   {300, 200, "1x4", 16, 300, 1200},
                          {300, 200, "100x25.4", 16, 300, 1181}};
    int number = 0;
    for (const Case& c : cases) {
        std::vector<std::string> arguments = {"print",
                                              write("p.png", png(quarters(c.width, c.height, "RGBW")))};
        if (c.size) arguments.insert(arguments.end(), {"--size", c.size});
        SCOPED_TRACE(c.size ? c.size : "best size");
        EXPECT_EQ(json(arguments)["media"]["code"], c.code);
        const Picture page = printedPage(++number);
        EXPECT_EQ(page.width, c.dotsAcross);
        EXPECT_EQ(page.height, c.dotsDown);
    }
}

TEST_F(Print, ASizeThatIsNotOfferedIsRefusedWithTheOfferedOnes) {
    const std::string image = write("picture.png", png(quarters(30, 20, "RGBW")));
    for (const char* size : {"6x4", "3x2mm", "1x6", "1x2"}) {
        const Outcome outcome = zprusb({"print", image, "--size", size});
        EXPECT_EQ(outcome.status, 1) << size;
        EXPECT_NE(outcome.err.find("code 1006"), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find("offers: 3 x 2 inch (76.2 x 50.8 mm); 2 x 3"), std::string::npos)
            << outcome.err;
    }
}

TEST_F(Print, APortraitIsTurnedClockwiseToFillALandscapePage) {
    json({"print", write("p.png", png(quarters(200, 300, "RGBW"))), "--size", "3x3"});
    EXPECT_EQ(coloursOf(printedPage(1)), "RGBW") << "a square page is no reason to turn";
    simulate(R"({"printers": [{"media": [{"code": 241, "width": 7620, "length": 5080}]}]})");
    json({"print", write("p.png", png(quarters(200, 300, "RGBW")))});
    EXPECT_EQ(coloursOf(printedPage(2)), "BRWG");
}

TEST_F(Print, FillingCutsBothSidesAlikeAndFittingLeavesWhiteMargins) {
    const std::string image = write("p.png", png(quarters(600, 100, "RGRB")));
    json({"print", image, "--size", "3x3"});
    const Picture filled = printedPage(1);
    EXPECT_EQ(coloursOf(filled), "RGRB");
    EXPECT_EQ(colourAt(filled, 1, 1), 'R');
    EXPECT_EQ(colourAt(filled, 48, 25), 'R');
    EXPECT_EQ(colourAt(filled, 52, 25), 'G');

    json({"print", image, "--size", "3x3", "--fit"});
    const Picture fitted = printedPage(2);
    EXPECT_EQ(coloursOf(fitted), "WWWW");
    EXPECT_EQ(colourAt(fitted, 2, 45), 'R');
    EXPECT_EQ(colourAt(fitted, 97, 45), 'G');
    EXPECT_EQ(colourAt(fitted, 97, 55), 'B');
    EXPECT_EQ(colourAt(fitted, 97, 60), 'W');
}

TEST_F(Print, TransparentPartsAreWhitePaper) {
    Picture picture{30, 20, {}};
    for (int i = 0; i < 30 * 20; ++i) picture.pixels.insert(picture.pixels.end(), {255, 0, 0, 0});
    json({"print", write("glass.png", png(picture, 4))});
    EXPECT_EQ(coloursOf(printedPage(1)), "WWWW");
}

TEST_F(Print, TheProgramOfTheReadmePrintsAPage) {
    simulate("{}");
    const Outcome outcome = run("zprusb_readme_example", {});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "printed, code 0\n");
    EXPECT_EQ(printedPage(1).width, 1800u);
}

/// A JPEG file with a camera's note about the orientation.
Bytes withOrientation(const Bytes& jpeg, bool littleEndian, uint8_t orientation) {
    const Bytes intel = {0xFF, 0xE1, 0,    34, 'E', 'x', 'i', 'f', 0, 0, 'I',         'I', 42, 0, 8, 0, 0, 0,
                         1,    0,    0x12, 1,  3,   0,   1,   0,   0, 0, orientation, 0,   0,  0, 0, 0, 0, 0};
    const Bytes motorola = {0xFF, 0xE1, 0, 34,   'E', 'x', 'i', 'f', 0, 0, 'M', 'M',         0, 42, 0, 0, 0, 8,
                            0,    1,    1, 0x12, 0,   3,   0,   0,   0, 1, 0,   orientation, 0, 0,  0, 0, 0, 0};
    const Bytes& note = littleEndian ? intel : motorola;
    Bytes file(jpeg.begin(), jpeg.begin() + 2);
    file.insert(file.end(), note.begin(), note.end());
    file.insert(file.end(), jpeg.begin() + 2, jpeg.end());
    return file;
}

TEST_F(Print, APhotoIsPrintedUprightWhateverWayTheCameraWasHeld) {
    struct Case {
        uint8_t orientation;
        const char* stored;
    };
    const Case cases[] = {{1, "RGBW"}, {2, "GRWB"}, {3, "WBGR"}, {4, "BWRG"}, {5, "RBGW"},
                          {6, "GWRB"}, {7, "WGBR"}, {8, "BRWG"}, {0, "RGBW"}, {9, "RGBW"}};
    int number = 0;
    for (const auto& [orientation, stored] : cases) {
        SCOPED_TRACE(int{orientation});
        const bool onItsSide = orientation >= 5 && orientation <= 8;
        const Bytes photo = jpeg(onItsSide ? quarters(160, 240, stored) : quarters(240, 160, stored));
        json({"print", write("photo.jpg", withOrientation(photo, orientation % 3 == 0, orientation)), "--size",
              "3x2"});
        EXPECT_EQ(coloursOf(printedPage(++number)), "RGBW");
    }
}

TEST_F(Print, ASectionOfALongPageHasTheSizeThatTheMediaListTells) {
    const std::string image = write("p.png", png(quarters(300, 200, "RGBW")));
    json({"print", image, "--size", "1x4", "--long", "2"});
    EXPECT_EQ(printedSheet(1)["section"], 2);
    EXPECT_EQ(printedPage(1).height, 300u);
    json({"print", image, "--size", "1x4", "--long", "0"});
    EXPECT_EQ(printedPage(2).height, 1200u);
    EXPECT_EQ(zprusb({"print", image, "--size", "1x4", "--long", "3"}).status, 1);
}

TEST_F(Print, APrinterThatFailsBeforeOrDuringThePageIsToldByItsCode) {
    const std::string image = write("p.png", png(quarters(300, 200, "RGBW")));
    const std::pair<const char*, const char*> failures[] = {
        {R"("condition": "out of media"}])", "code 21"},
        {R"("foreign": false}], "faults": [{"imageByte": 100000, "action": "closePipe"}])", "code 2600"},
        {R"("foreign": false}], "faults": [{"imageByte": 100000, "action": "unplug"}])", "code 2600"}};
    for (const auto& [setup, code] : failures) {
        simulate(std::string(R"({"printers": [{)") + smallMedia + ", " + setup + "}");
        const Outcome outcome = zprusb({"print", image});
        EXPECT_EQ(outcome.status, 1) << setup;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find(code), std::string::npos) << outcome.err;
    }
}

}  // namespace
}  // namespace test
