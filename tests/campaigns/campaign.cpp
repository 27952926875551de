#include "campaign.h"

#include <zprusb_text.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <random>
#include <string_view>
#include <thread>

#include "support/system.h"

namespace fs = std::filesystem;

namespace {

constexpr uint8_t mediaCode = 0xF1;
constexpr uint32_t tenDots = 85;  // 1/100 mm

std::mutex longestPageMutex;
std::chrono::steady_clock::duration longest{};  // guarded by longestPageMutex

}  // namespace

unsigned rounds(unsigned inShort, unsigned inLong) {
    return std::getenv("ZPRUSB_SOAK") != nullptr ? inLong : inShort;
}

uint32_t printPage(uint8_t author, uint16_t* code) {
    const Bytes pixels(pageSize, author);
    if (zprusb_checkMediaInfo(mediaCode, tenDots, tenDots, code) == 0) return 0;
    if (zprusb_startpage(nullptr, code) == 0) return 0;
    const auto start = std::chrono::steady_clock::now();
    const uint32_t written = zprusb_write(pixels.data(), &pageSize, code);
    const uint32_t printed = zprusb_endpage(written != 0 ? code : nullptr) & written;
    const auto took = std::chrono::steady_clock::now() - start;
    std::lock_guard lock(longestPageMutex);
    longest = std::max(longest, took);
    return printed;
}

std::chrono::milliseconds longestPage() {
    std::lock_guard lock(longestPageMutex);
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest);
}

bool isDocumented(uint16_t code) {
    return std::string_view(zprusb_resultWords(code).name) != "UNKNOWN";
}

void connectPrinters(unsigned count, const fs::path& folder, bool shared, unsigned patience) {
    Json printers = Json::array();
    for (unsigned i = 0; i < count; ++i) {
        printers.push_back({{"media", {{{"code", mediaCode}, {"width", tenDots}, {"length", tenDots}}}}});
        if (shared) printers[i]["serial"] = folder.filename().string() + "N" + std::to_string(i);
    }
    const std::u8string output = folder.u8string();
    const Json configuration{{"printers", printers},
                             {"output", std::string(output.begin(), output.end())},
                             {"dataTimeoutSeconds", patience}};
    char error[ZPRUSBSIM_ERROR_SIZE] = "";
    EXPECT_EQ(zprusbsim_configure(configuration.dump().c_str(), error, sizeof error), 1u) << error;
}

PageFolder::PageFolder()
    : path(fs::temp_directory_path() / "zprusb campaigns" / std::to_string(std::random_device()())) {}

PageFolder::~PageFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}
