// A hundred threads, each with an object of its own, do everything at random on as many printers, half of which
// come and go.
#include <atomic>
#include <chrono>
#include <fstream>
#include <map>
#include <random>

#include "campaign.h"
#include "support/pictures.h"

namespace {

namespace fs = std::filesystem;

constexpr unsigned threads = ZPRUSB_MAX_OBJECTS - 1;  // the test's own is bound as well
constexpr unsigned printers = threads;
constexpr unsigned patience = 10;  // seconds: what a simulated printer has without being told

bool comesAndGoes(unsigned printer) {
    return printer % 2 != 0;
}

bool isExpected(uint16_t code, unsigned printer) {
    // Somebody else has the printer, is taking its last reservation over, or prints on it.
    if (code == ZPRUSB_SUCCESS || code == ZPRUSB_PRINTER_BUSY) return true;
    return comesAndGoes(printer) && (code == ZPRUSB_NO_PRINTER || code == ZPRUSB_COMMUNICATION);
}

/// What one thread does until the time is up. Its pages are all of its number.
/// @return how many it printed on printers that stay.
unsigned work(uint8_t author, const std::atomic<bool>& timeIsUp) {
    std::mt19937 random(author);
    unsigned pages = 0;
    uint16_t code = ZPRUSB_SUCCESS, bound = 0, objects = 0;
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    while (!timeIsUp) {
        const auto printer = static_cast<unsigned>(random() % 200 == 0 ? random() % printers : author);
        if (zprusb_selectPrinter(static_cast<uint8_t>(printer), &code) != printer) {
            EXPECT_TRUE(comesAndGoes(printer)) << code;
            if (random() % 10 == 0) listPrinters();
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            continue;
        }
        switch (random() % 8) {
            case 0:
                zprusb_close();
                EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
                break;
            case 1:
                code = codeOf(zprusb_status);
                EXPECT_TRUE(isExpected(code, printer)) << code;
                break;
            case 2: {
                uint8_t record[ZPRUSB_INFO_COUNTERS_SIZE];
                uint32_t length = sizeof record;
                zprusb_getPrinterInfo(ZPRUSB_INFO_COUNTERS, record, &length);
                break;
            }
            case 3:
                EXPECT_EQ(codeOf(zprusb_copies, uint16_t{2}), ZPRUSB_SUCCESS);
                EXPECT_EQ(codeOf(zprusb_copies, uint16_t{1}), ZPRUSB_SUCCESS);
                EXPECT_EQ(zprusb_attachObjectCount(&bound, &objects), 1u);
                EXPECT_LE(bound, objects);
                break;
            default:
                const uint32_t printed = printPage(author, &code);
                EXPECT_TRUE(isExpected(code, printer)) << code;
                if (!comesAndGoes(printer)) pages += printed;
        }
    }
    zprusb_close();
    return pages;
}

/// The author of a page, which every byte of it tells; 255 if they disagree.
uint8_t authorOf(const fs::path& picture) {
    std::ifstream file(picture, std::ios::binary);
    const test::Content pixels = test::readPng({std::istreambuf_iterator<char>(file), {}}).bytes;
    if (pixels.size() != pageSize) return 255;
    return std::ranges::all_of(pixels, [&](uint8_t byte) { return byte == pixels[0]; }) ? pixels[0] : 255;
}

/// The number of the printer that printed a page, from the sheet beside the picture.
unsigned printerOf(fs::path picture) {
    std::ifstream file(picture.replace_extension(".json"));
    const std::string serial = Json::parse(file)["printer"];
    return static_cast<unsigned>(std::stoul(serial.substr(serial.rfind('N') + 1)));
}

struct Crowd : Campaign {
    Crowd() : Campaign(printers, true, patience) {}
};

}  // namespace

TEST_F(Crowd, printsEachThreadsPagesWholeWhileOthersOpenSelectAndClose) {
    EXPECT_EQ(zprusb_MakeObject(ZPRUSB_MAX_OBJECTS), 1u);
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);  // so that no close is the last one, which ends all objects
    std::atomic<bool> timeIsUp = false;
    std::vector<unsigned> printed(threads);
    {
        std::vector<std::jthread> workers;
        for (unsigned i = 0; i < threads; ++i)
            workers.emplace_back([&, i] { printed[i] = work(static_cast<uint8_t>(i), timeIsUp); });
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(rounds(5, 120));
        std::mt19937 random(threads);
        while (std::chrono::steady_clock::now() < end) {
            const auto printer = static_cast<unsigned>(random() % printers | 1);
            if (random() % 2 == 0)
                zprusbsim_unplug(printer);
            else
                zprusbsim_plug(printer);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        timeIsUp = true;
    }
    std::map<uint8_t, unsigned> found;
    for (unsigned printer = 0; printer < printers; printer += 2) {
        EXPECT_EQ(zprusb_selectPrinter(static_cast<uint8_t>(printer), nullptr), printer);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);  // answered when all pages before are ready
    }
    if (fs::exists(folder.path)) {
        for (const auto& entry : fs::directory_iterator(folder.path))
            if (entry.path().extension() == ".png" && !comesAndGoes(printerOf(entry.path())))
                ++found[authorOf(entry.path())];
    }
    unsigned all = 0;
    for (unsigned i = 0; i < threads; ++i) {
        EXPECT_EQ(found[static_cast<uint8_t>(i)], printed[i]) << "of thread " << i;
        all += printed[i];
    }
    EXPECT_EQ(found.count(255), 0u);
    EXPECT_GT(all, 0u);
    std::cout << all << " pages of " << threads << " threads, the longest took " << longestPage().count()
              << " ms\n";
}
