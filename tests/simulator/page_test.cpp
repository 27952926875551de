#include <fstream>
#include <set>
#include <thread>

#include "host.h"
#include "support/pictures.h"

using namespace test;

namespace {

namespace fs = std::filesystem;

Bytes printLongRequest(uint8_t section, uint16_t width, uint16_t length) {
    Bytes request{0x02, 0x40, 19, 0, 1, 1, 0, section, 0, 0, 0, 0, 0, 0, 0, 0, 0x10, 1, 0, 200, 0, 200, 0};
    for (size_t i = 0; i < 2; ++i) {
        request[8 + i] = static_cast<uint8_t>(width >> 8 * i);
        request[12 + i] = static_cast<uint8_t>(length >> 8 * i);
    }
    return request;
}

class Pages : public SimulatorTest {
protected:
    static Pixels lastPicture() {
        const std::string path = lastPage();
        std::ifstream file(fs::path(std::u8string(path.begin(), path.end())), std::ios::binary);
        return readPng({std::istreambuf_iterator<char>(file), {}});
    }

    static std::string lastPage() {
        char path[1024] = "";
        EXPECT_GT(zprusbsim_lastPage(0, path, sizeof path), 0u);
        return path;
    }

    Json dataSheet(int number) const {
        std::ifstream file(folder /
                           (std::string(number < 10 ? "000" : "00") + std::to_string(number) + ".json"));
        return Json::parse(file, nullptr, false);
    }

    size_t filesInFolder() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
};

TEST_F(Pages, BecomeAPictureAndADataSheet) {
    const Host host;
    host.transfer(printRequest(8, 2));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    const std::u8string path = (folder / "0001.png").u8string();
    EXPECT_EQ(lastPage(), std::string(path.begin(), path.end()));
    const Pixels picture = lastPicture();
    EXPECT_EQ(picture.width, 120u);
    EXPECT_EQ(picture.height, 60u);
    EXPECT_EQ(picture.bytes, pattern(smallPageSize));
    Json sheet = dataSheet(1);
    EXPECT_EQ(sheet["printer"], state()["serial"]);
    sheet.erase("printer");
    EXPECT_EQ(sheet, Json::parse(R"({
        "jobNumber": 8, "copies": 2, "mediaCode": 241,
        "widthMillimetres": 10.16, "lengthMillimetres": 5.08, "widthPixels": 120, "lengthPixels": 60,
        "option20": 1, "option21": 200, "option22": 300, "complete": true, "bytesArrived": 21600})"));
    EXPECT_EQ(filesInFolder(), 2u);
}

TEST_F(Pages, ThatCannotBeWrittenBreakThePrinterDown) {
    fs::create_directories(folder.parent_path());
    configure();
    std::ofstream(folder) << "a file where the folder should be";
    const Host host;
    host.transfer(printRequest(1));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    EXPECT_EQ(zprusbsim_printedPages(0), 0u);
    EXPECT_EQ(host.ask(getStatus)[7], 0x11);
}

TEST_F(Pages, CountCopiesAndCarryTheirJobNumberOn) {
    configure({{{"counters", {10, 20, 30, 40, 50, 60, 255}}, {"jobNumber", 254}}});
    const Host host;
    for (const uint8_t jobNumber : Bytes{255, 1}) {
        host.transfer(printRequest(jobNumber, 3));
        EXPECT_EQ(host.ask(getStatus)[34], jobNumber);
    }
    EXPECT_EQ(zprusbsim_printedPages(0), 2u);
    EXPECT_EQ(state()["counters"], Json({16, 26, 36, 46, 56, 66, 261}));
}

TEST_F(Pages, MayBeLongOrASection) {
    const struct {
        uint8_t section;
        uint16_t width, length;
        uint32_t columns, rows;
    } cases[] = {
        {0, 1016, 7112, 120, 840}, {0, 1016, 8000, 120, 945}, {1, 508, 254, 60, 30}, {2, 508, 508, 60, 60}};
    const Host host;
    int pages = 0;
    for (const auto& [section, width, length, columns, rows] : cases) {
        host.transfer(printLongRequest(section, width, length), pattern(size_t{3} * columns * rows));
        ASSERT_EQ(zprusbsim_waitForPages(0, static_cast<uint32_t>(++pages), patience), 1u);
        const Pixels picture = lastPicture();
        EXPECT_EQ(picture.width, columns);
        EXPECT_EQ(picture.height, rows);
        EXPECT_EQ(dataSheet(pages)["section"], section);
        EXPECT_EQ(dataSheet(pages)["complete"], true);
    }
}

TEST_F(Pages, OfImpossibleValuesAreRefused) {
    const Bytes good = printRequest(1);
    const std::pair<const char*, Bytes> cases[] = {
        {"job number 0", printRequest(0)},
        {"no copies", printRequest(1, 0)},
        {"1000 copies", changed(good, {{5, 0xE8}, {6, 3}})},
        {"width 0", changed(good, {{7, 0}, {8, 0}})},
        {"another width", changed(good, {{7, 0xF9}})},
        {"another length", changed(good, {{9, 0xFD}})},
        {"another media code", changed(good, {{11, 0xF2}})},
        {"long page too short", printLongRequest(0, 1016, 7111)},
        {"long page too long", printLongRequest(0, 1016, 8001)},
        {"section of another length", printLongRequest(1, 508, 508)},
        {"section without a length", printLongRequest(3, 508, 0)},
        {"section 6", printLongRequest(6, 508, 254)},
        {"byte 9", changed(good, {{13, 1}})},
        {"long page, byte 14", changed(printLongRequest(0, 1016, 8000), {{18, 1}})},
    };
    const Host host;
    for (const auto& [name, request] : cases) EXPECT_EQ(host.ask(request), refusal(3)) << name;
}

TEST_F(Pages, AreRefusedWhileThePrinterIsNotReadyOrBusy) {
    configure({{{"secondsPerPage", 3600}}});
    const Host host;
    zprusbsim_setCondition(0, "out of media", 0, 0);
    EXPECT_EQ(host.ask(printRequest(1)), refusal(0x33, 0, 0, 0x33));
    zprusbsim_setCondition(0, "device error", 6, 2);
    EXPECT_EQ(host.ask(printRequest(1)), refusal(0x11, 6, 2, 0x11));
    zprusbsim_setCondition(0, "ready", 0, 0);
    host.transfer(printRequest(1));
    EXPECT_EQ(host.ask(getStatus), success(changed(Bytes(48), {{24, 1}, {32, 1}, {39, 1}}), 0x21));
    EXPECT_EQ(host.ask(printRequest(2)), refusal(0x21, 0, 0, 0x21));
}

TEST_F(Pages, WhoseDataStopComingAreWrittenAsIncompleteAndNotCounted) {
    configure({Json::object()}, 0.1);
    const Host host;
    // In one piece, so that the data are there in time on any machine.
    ASSERT_EQ(host.ask(concatenate(printRequest(1), Bytes(3600, 5))), success());
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    EXPECT_EQ(host.ask(getStatus).size(), 58u) << "the printer listens again";
    EXPECT_EQ(zprusbsim_printedPages(0), 0u);
    EXPECT_EQ(state()["counters"][0], 0);
    EXPECT_EQ(dataSheet(1)["complete"], false);
    EXPECT_EQ(dataSheet(1)["bytesArrived"], 3600);
    const Bytes expected = concatenate(Bytes(3600, 5), Bytes(smallPageSize - 3600, 0xFF));
    EXPECT_EQ(lastPicture().bytes, expected) << "the rest stays white";
}

TEST_F(Pages, MayBeFollowedByAnyAmountOfBytesWhoseAnswersNobodyReads) {
    configure({Json::object()}, 0.1);
    Bytes requests;
    for (int i = 0; i < 400'000; ++i) requests.insert(requests.end(), getStatus.begin(), getStatus.end());
    const struct {
        Bytes page, surplus, answer;
    } cases[] = {
        {pattern(smallPageSize), Bytes(4 << 20, 0xEE), refusal(1)},
        {Bytes(1), Bytes(4 << 20, 0xEE), refusal(1)},  // comes after the data time-out
        {Bytes(1), requests, success(changed(Bytes(48), {{24, 1}}))},
    };
    uint32_t pages = 0;
    for (const auto& [page, surplus, answer] : cases) {
        const uint64_t before = state()["requests"];
        const Host host;
        host.transfer(printRequest(1), page);
        ASSERT_EQ(zprusbsim_waitForPages(0, ++pages, patience), 1u);
        EXPECT_TRUE(host.send(surplus));
        if (answer == refusal(1)) {
            EXPECT_EQ(state()["requests"], before + 2) << "what is dropped does not count";
        }
        EXPECT_EQ(host.receive(), answer);
    }
}

TEST_F(Pages, OfSeveralPrintersShareAFolderAndContinueItsNumbers) {
    constexpr int pagesEach = 10;
    fs::create_directories(folder);
    for (const char* name : {"0041.png", "7.txt", "notes.png"}) std::ofstream(folder / name) << "occupied";
    configure({Json::object(), Json::object()});
    const auto printAll = [](uint32_t number) {
        const Host host(number);
        for (uint8_t job = 1; job <= pagesEach; ++job) host.transfer(printRequest(job));
        EXPECT_EQ(zprusbsim_waitForPages(number, pagesEach, patience), 1u);
    };
    std::thread other(printAll, 1);
    printAll(0);
    other.join();
    std::set<std::string> jobs;
    for (int number = 42; number < 42 + 2 * pagesEach; ++number) {
        const Json sheet = dataSheet(number);
        EXPECT_TRUE(jobs.insert(sheet["printer"].dump() + sheet["jobNumber"].dump()).second);
    }
    EXPECT_EQ(filesInFolder(), 3u + 4 * pagesEach);
}

}  // namespace
