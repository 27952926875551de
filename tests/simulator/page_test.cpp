#include <fstream>
#include <set>
#include <thread>

#include "host.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

using namespace test;

namespace {

namespace fs = std::filesystem;

constexpr uint32_t patience = 100000;  // ms
const Bytes getStatus{0x01, 0x00, 0, 0};

struct Picture {
    int width = 0;
    int height = 0;
    Bytes pixels;
};

Bytes contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

Picture pictureOf(const fs::path& path) {
    const Bytes png = contentOf(path);
    Picture picture;
    int channels = 0;
    uint8_t* pixels = stbi_load_from_memory(png.data(), static_cast<int>(png.size()), &picture.width,
                                            &picture.height, &channels, 0);
    EXPECT_NE(pixels, nullptr);
    EXPECT_EQ(channels, 3);
    if (pixels != nullptr) picture.pixels.assign(pixels, pixels + 3 * picture.width * picture.height);
    stbi_image_free(pixels);
    return picture;
}

Json dataSheetOf(fs::path picture) {
    return Json::parse(contentOf(picture.replace_extension(".json")));
}

Bytes printLongRequest(uint8_t section, uint16_t width, uint16_t length) {
    const auto low = [](uint16_t value) { return static_cast<uint8_t>(value); };
    const auto high = [](uint16_t value) { return static_cast<uint8_t>(value >> 8); };
    return {0x02,        0x40,         19, 0, 1,    1, 0, section, low(width), high(width), 0, 0,
            low(length), high(length), 0,  0, 0x10, 1, 0, 200,     0,          200,         0};
}

class Pages : public SimulatorTest {
protected:
    Pages() { configureWith(Json::object()); }

    void configureWith(Json printer) {
        printer["media"] = smallMedia;
        configure({{"printers", {printer}}});
    }

    fs::path lastPage() const {
        char path[1024] = "";
        EXPECT_GT(zprusbsim_lastPage(0, path, sizeof path), 0u);
        const std::string text = path;
        return std::u8string(text.begin(), text.end());
    }

    size_t filesInFolder() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
};

TEST_F(Pages, BecomeAPictureAndADataSheet) {
    const Host host;
    ASSERT_EQ(host.ask(printRequest(8, 2)), acknowledgement());
    const Bytes pixels = pattern(smallPageSize);
    ASSERT_TRUE(host.send(pixels));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);

    EXPECT_EQ(lastPage(), folder / "0001.png");
    const Picture picture = pictureOf(lastPage());
    EXPECT_EQ(picture.width, 120);
    EXPECT_EQ(picture.height, 60);
    EXPECT_EQ(picture.pixels, pixels);
    EXPECT_EQ(dataSheetOf(lastPage()), Json::parse(R"({
        "printer": "SIMULATED0001", "jobNumber": 8, "copies": 2, "mediaCode": 241,
        "widthMillimetres": 10.16, "lengthMillimetres": 5.08, "widthPixels": 120, "lengthPixels": 60,
        "option20": 1, "option21": 200, "option22": 300, "complete": true, "bytesArrived": 21600})"));
    EXPECT_EQ(filesInFolder(), 2u);
}

TEST_F(Pages, OfThePresetSizeKeepTheirDots) {
    configure();
    const Host host;
    ASSERT_EQ(host.ask({0x01, 0x40, 14, 0, 1, 1, 0, 0x88, 0x3B, 0xB0, 0x27, 0xF1, 1, 0, 200, 0, 200, 0}),
              acknowledgement());
    const Bytes pixels = pattern(size_t{1800} * 1200 * 3);
    ASSERT_TRUE(host.send(pixels));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    const Picture picture = pictureOf(lastPage());
    EXPECT_EQ(picture.width, 1800);
    EXPECT_EQ(picture.height, 1200);
    EXPECT_EQ(picture.pixels, pixels);
}

TEST_F(Pages, CountCopiesAndCarryTheirJobNumberOn) {
    configureWith({{"counters", {10, 20, 30, 40, 50, 60, 255}}, {"jobNumber", 254}});
    const Host host;
    for (const uint8_t jobNumber : Bytes{255, 1}) {
        ASSERT_EQ(host.ask(printRequest(jobNumber, 3)), acknowledgement());
        ASSERT_TRUE(host.send(pattern(smallPageSize)));
        EXPECT_EQ(host.ask(getStatus)[34], jobNumber);
    }
    EXPECT_EQ(zprusbsim_printedPages(0), 2u);
    const std::pair<uint8_t, Bytes> counters[] = {
        {0x60, {16, 0}}, {0x64, {26, 0}}, {0xA4, {36, 0}}, {0x68, {46, 0}},
        {0x6C, {56, 0}}, {0xF8, {66, 0}}, {0xFC, {5, 1}},
    };
    for (const auto& [address, value] : counters) {
        const Bytes answer = host.ask({0x05, 0xC0, 2, 0, address, 2});
        EXPECT_EQ(Bytes(answer.begin() + 10, answer.end()), value) << "address " << int(address);
    }
}

TEST_F(Pages, MayBeLongOrASection) {
    const struct {
        uint8_t section;
        uint16_t width, length;
        int columns, rows;
    } cases[] = {
        {0, 1016, 7112, 120, 840}, {0, 1016, 8000, 120, 945}, {1, 508, 254, 60, 30}, {2, 508, 508, 60, 60}};
    const Host host;
    uint32_t pages = 0;
    for (const auto& [section, width, length, columns, rows] : cases) {
        ASSERT_EQ(host.ask(printLongRequest(section, width, length)), acknowledgement());
        ASSERT_TRUE(host.send(pattern(static_cast<size_t>(columns * rows * 3))));
        ASSERT_EQ(zprusbsim_waitForPages(0, ++pages, patience), 1u);
        const Picture picture = pictureOf(lastPage());
        EXPECT_EQ(picture.width, columns);
        EXPECT_EQ(picture.height, rows);
        EXPECT_EQ(dataSheetOf(lastPage())["section"], section);
        EXPECT_EQ(dataSheetOf(lastPage())["complete"], true);
    }
}

TEST_F(Pages, OfImpossibleValuesAreRefused) {
    const auto changed = [](size_t offset, uint8_t value) {
        Bytes request = printRequest(1);
        request[offset] = value;
        return request;
    };
    const std::pair<const char*, Bytes> cases[] = {
        {"job number 0", printRequest(0)},
        {"no copies", printRequest(1, 0)},
        {"1000 copies",
         concatenate({0x01, 0x40, 14, 0, 1, 0xE8, 3}, {0xF8, 3, 0xFC, 1, 0xF1, 1, 0, 0, 0, 0, 0})},
        {"width 0", concatenate({0x01, 0x40, 14, 0, 1, 1, 0}, {0, 0, 0xFC, 1, 0xF1, 1, 0, 0, 0, 0, 0})},
        {"another width", changed(7, 0xF9)},
        {"another length", changed(9, 0xFD)},
        {"another media code", changed(11, 0xF2)},
        {"long page too short", printLongRequest(0, 1016, 7111)},
        {"long page too long", printLongRequest(0, 1016, 8001)},
        {"section of another length", printLongRequest(1, 508, 508)},
        {"section without a length", printLongRequest(3, 508, 0)},
        {"section 6", printLongRequest(6, 508, 254)},
    };
    const Host host;
    for (const auto& [name, request] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(host.ask(request), refusal(3));
    }
    EXPECT_EQ(zprusbsim_printedPages(0), 0u);
}

TEST_F(Pages, AreRefusedWhileThePrinterIsNotReady) {
    const Host host;
    zprusbsim_setCondition(0, "out of media", 0, 0);
    EXPECT_EQ(host.ask(printRequest(1)), refusal(0x33, 0, 0, 0x33));
    zprusbsim_setCondition(0, "device error", 6, 2);
    EXPECT_EQ(host.ask(printRequest(1)), refusal(0x11, 6, 2, 0x11));
}

TEST_F(Pages, KeepThePrinterBusyForTheirTime) {
    configureWith({{"secondsPerPage", 3600}});
    const Host host;
    ASSERT_EQ(host.ask(printRequest(1)), acknowledgement());
    ASSERT_TRUE(host.send(pattern(smallPageSize)));
    const Bytes answer = host.ask(getStatus);
    EXPECT_EQ(answer[7], 0x21);
    EXPECT_EQ(answer[42], 1);
    EXPECT_EQ(answer[49], 1);
    EXPECT_EQ(host.ask(printRequest(2)), refusal(0x21, 0, 0, 0x21));
}

TEST_F(Pages, WhoseDataStopComingAreWrittenAsIncompleteAndNotCounted) {
    configure({{"printers", {{{"media", smallMedia}}}}, {"dataTimeoutSeconds", 0.1}});
    const Host host;
    // In one piece, so that the data are there in time on any machine.
    ASSERT_EQ(host.ask(concatenate(printRequest(1), Bytes(3600, 5))), acknowledgement());
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    EXPECT_EQ(host.ask(getStatus).size(), 58u) << "the printer listens again";
    EXPECT_EQ(zprusbsim_printedPages(0), 0u);
    EXPECT_EQ(host.ask({0x05, 0xC0, 2, 0, 0x60, 4})[10], 0);
    EXPECT_EQ(dataSheetOf(lastPage())["complete"], false);
    EXPECT_EQ(dataSheetOf(lastPage())["bytesArrived"], 3600);
    Bytes expected(smallPageSize, 0xFF);
    std::fill_n(expected.begin(), 3600, uint8_t{5});
    EXPECT_EQ(pictureOf(lastPage()).pixels, expected) << "the rest stays white";
}

TEST_F(Pages, OfSeveralPrintersShareAFolderAndContinueItsNumbers) {
    constexpr int pagesEach = 10;
    fs::create_directories(folder);
    for (const char* name : {"0041.png", "7.txt", "notes.png"}) std::ofstream(folder / name) << "occupied";
    configure({{"printers", {{{"media", smallMedia}}, {{"media", smallMedia}}}}});
    const auto printAll = [](uint32_t number) {
        const Host host(number);
        for (uint8_t job = 1; job <= pagesEach; ++job) {
            EXPECT_EQ(host.ask(printRequest(job)), acknowledgement());
            EXPECT_TRUE(host.send(Bytes(smallPageSize, job)));
        }
        EXPECT_EQ(zprusbsim_waitForPages(number, pagesEach, patience), 1u);
    };
    std::thread other(printAll, 1);
    printAll(0);
    other.join();
    std::set<std::string> jobs;
    for (int number = 42; number < 42 + 2 * pagesEach; ++number) {
        const Json sheet = dataSheetOf(folder / ("00" + std::to_string(number) + ".png"));
        EXPECT_TRUE(jobs.insert(sheet["printer"].dump() + sheet["jobNumber"].dump()).second);
    }
    EXPECT_EQ(filesInFolder(), 3u + 4 * pagesEach);
}

}  // namespace
