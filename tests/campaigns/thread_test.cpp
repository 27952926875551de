// A hundred threads, each with an object of its own, do everything at random on a few printers.
#include <atomic>
#include <chrono>
#include <fstream>
#include <map>
#include <random>

#include "campaign.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace {

namespace fs = std::filesystem;

constexpr unsigned threads = ZPRUSB_MAX_OBJECTS - 1;  // the test's own is bound as well
constexpr unsigned printers = 100;                    // and one more that comes and goes

bool isExpected(uint16_t code) {
    // Somebody else has the printer, is taking its last reservation over, or prints on it.
    return code == ZPRUSB_SUCCESS || code == ZPRUSB_PRINTER_BUSY;
}

/// What one thread does until the time is up. Its pages are all of its number.
/// @return how many it printed.
unsigned work(uint8_t author, const std::atomic<bool>& timeIsUp) {
    std::mt19937 random(author);
    unsigned pages = 0;
    uint16_t code = ZPRUSB_SUCCESS, bound = 0, objects = 0;
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    while (!timeIsUp) {
        // Mostly its own printer: who meets another one keeps all threads waiting, for 2 s at worst.
        const auto printer = random() % 100 == 0 ? random() % printers : author;
        EXPECT_EQ(zprusb_selectPrinter(static_cast<uint8_t>(printer), &code), printer);
        switch (random() % 8) {
            case 0:
                zprusb_close();
                EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
                break;
            case 1:
                EXPECT_TRUE(isExpected(codeOf(zprusb_status)));
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
                EXPECT_TRUE(isExpected(code)) << code;
                pages += printed;
        }
    }
    zprusb_close();
    return pages;
}

/// The author of a page, which every byte of it tells; 255 if they disagree.
uint8_t authorOf(const fs::path& picture) {
    std::ifstream file(picture, std::ios::binary);
    const std::string png(std::istreambuf_iterator<char>(file), {});
    int width = 0, height = 0, channels = 0;
    stbi_uc* pixels = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(png.data()),
                                            static_cast<int>(png.size()), &width, &height, &channels, 3);
    if (pixels == nullptr) return 255;
    const bool agree = std::all_of(pixels, pixels + pageSize, [&](stbi_uc byte) { return byte == pixels[0]; });
    const uint8_t author = agree ? pixels[0] : 255;
    stbi_image_free(pixels);
    return author;
}

struct Crowd : Campaign {
    Crowd() : Campaign(printers + 1) {}
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
        while (std::chrono::steady_clock::now() < end) {
            zprusbsim_unplug(printers);
            std::this_thread::sleep_for(std::chrono::milliseconds(250));
            zprusbsim_plug(printers);
        }
        timeIsUp = true;
    }
    std::map<uint8_t, unsigned> found;
    for (unsigned printer = 0; printer < printers; ++printer) {
        EXPECT_EQ(zprusb_selectPrinter(static_cast<uint8_t>(printer), nullptr), printer);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);  // answered when all pages before are ready
    }
    if (fs::exists(folder.path)) {
        for (const auto& entry : fs::directory_iterator(folder.path))
            if (entry.path().extension() == ".png") ++found[authorOf(entry.path())];
    }
    unsigned all = 0;
    for (unsigned i = 0; i < threads; ++i) {
        EXPECT_EQ(found[static_cast<uint8_t>(i)], printed[i]) << "of thread " << i;
        all += printed[i];
    }
    EXPECT_EQ(found.count(255), 0u);
    EXPECT_GT(all, 0u);
    std::cout << all << " pages of " << threads << " threads\n";
}
