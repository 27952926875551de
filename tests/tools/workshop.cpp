#include "workshop.h"

#include <fstream>
#include <iomanip>
#include <iterator>
#include <random>
#include <sstream>
#include <string_view>

namespace test {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view primaries = "RGB";

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

Bytes contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

fs::path pageFile(int number, const char* suffix) {
    const std::string digits = std::to_string(number);
    return fs::path("printed") / (std::string(4 - digits.size(), '0') + digits + suffix);
}

}  // namespace

testing::AssertionResult contains(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "'" << part << "' is not in '" << text << "'";
}

// A folder that no program should stumble over: with a blank and with letters outside ASCII.
Workshop::Workshop() {
    std::random_device random;
    folder_ = fs::temp_directory_path() / pathOf("zprusb tööls-" + std::to_string(random()));
    fs::create_directories(folder_);
    setEnvironment("ZPRUSB_SIMULATOR", "");
}

Workshop::~Workshop() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void Workshop::simulate(const std::string& configuration) {
    write("simulator.json", Bytes(configuration.begin(), configuration.end()));
    setEnvironment("ZPRUSB_SIMULATOR", folder_ / "simulator.json");
}

ChildProcess Workshop::start(const std::string& line) {
    std::istringstream stream(line);
    std::string program, word;
    std::vector<std::string> arguments;
    stream >> program;
    while (stream >> std::quoted(word)) arguments.push_back(word);
    return {programs / programFile(program), arguments, {folder_, folder_ / "err"}};
}

Outcome Workshop::run(const std::string& line) {
    ChildProcess process = start(line);
    process.closeInput();
    const std::string out = process.readAll();
    const int status = process.exitStatus();
    std::ifstream errors(folder_ / "err");
    return {status, out, {std::istreambuf_iterator<char>(errors), {}}};
}

Json Workshop::json(const std::string& line) {
    const Outcome outcome = run(line + " --json");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return Json::parse(outcome.out, nullptr, false);
}

void Workshop::write(const std::string& name, const Bytes& content) {
    const fs::path file = folder_ / pathOf(name);
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

Bytes Workshop::read(const std::string& name) {
    return contentOf(folder_ / pathOf(name));
}

Picture Workshop::printedPage(int number) {
    const Pixels page = readPng(contentOf(folder_ / pageFile(number, ".png")));
    EXPECT_FALSE(page.bytes.empty()) << "page " << number << " was not printed";
    if (page.bytes.empty()) return {};
    EXPECT_EQ(printedSheet(number).value("complete", false), true);
    return {page.width, page.height, page.bytes};
}

Json Workshop::printedSheet(int number) {
    return Json::parse(contentOf(folder_ / pageFile(number, ".json")), nullptr, false);
}

Bytes png(const Picture& picture, unsigned channels, const Bytes& chunks) {
    return pngOf({picture.width, picture.height, picture.pixels}, channels, chunks);
}

Bytes jpeg(const Picture& picture, unsigned channels, const Bytes& segments) {
    return jpegOf({picture.width, picture.height, picture.pixels}, channels, segments);
}

Picture quarters(uint32_t width, uint32_t height, const std::string& letters) {
    Picture picture{width, height, {}};
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const char letter = letters[(y >= height / 2 ? 2u : 0u) + (x >= width / 2 ? 1u : 0u)];
            for (const char primary : primaries)
                picture.pixels.push_back(letter == 'W' || letter == primary ? 255 : 0);
        }
    }
    return picture;
}

std::string coloursOf(const Picture& picture) {
    return {colourAt(picture, 25, 25), colourAt(picture, 75, 25), colourAt(picture, 25, 75),
            colourAt(picture, 75, 75)};
}

char colourAt(const Picture& picture, unsigned across, unsigned down) {
    constexpr uint8_t tolerance = 12;  // JPEG
    if (picture.pixels.empty()) return '?';
    size_t at = 3 * (size_t{picture.height * down / 100} * picture.width + picture.width * across / 100);
    std::string lit;
    for (const char primary : primaries) {
        const uint8_t value = picture.pixels[at++];
        if (value >= 255 - tolerance) {
            lit += primary;
        } else if (value > tolerance) {
            return '?';
        }
    }
    return lit == primaries ? 'W' : lit.size() == 1 ? lit[0] : '?';
}

}  // namespace test
