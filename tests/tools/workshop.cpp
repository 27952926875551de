#include "workshop.h"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>

namespace test {
namespace {

namespace fs = std::filesystem;

struct Colour {
    char letter;
    std::array<uint8_t, 3> rgb;
};
constexpr Colour colours[] = {
    {'R', {255, 0, 0}}, {'G', {0, 255, 0}}, {'B', {0, 0, 255}}, {'W', {255, 255, 255}}};

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

Bytes contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// A text without the carriage returns of Windows.
std::string textOf(const fs::path& file) {
    const Bytes content = contentOf(file);
    std::string text(content.begin(), content.end());
    std::erase(text, '\r');
    return text;
}

void append(void* bytes, void* data, int size) {
    const auto* first = static_cast<const uint8_t*>(data);
    auto& target = *static_cast<Bytes*>(bytes);
    target.insert(target.end(), first, first + size);
}

bool similar(const uint8_t* pixel, const Colour& colour) {
    constexpr int tolerance = 12;  // JPEG
    for (size_t i = 0; i < 3; ++i)
        if (std::abs(pixel[i] - colour.rgb[i]) > tolerance) return false;
    return true;
}

std::string pageName(int number, const char* suffix) {
    const std::string digits = std::to_string(number);
    return std::string(4 - digits.size(), '0') + digits + suffix;
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

ChildProcess Workshop::start(const std::string& program, const std::vector<std::string>& arguments) {
    return {ownProgram().parent_path() / programFile(program), arguments, {folder_, folder_ / "err"}};
}

Outcome Workshop::run(const std::string& program, const std::vector<std::string>& arguments) {
    ChildProcess process = start(program, arguments);
    process.closeInput();
    const std::string out = process.readAll();
    const int status = process.exitStatus();
    return {status, out, textOf(folder_ / "err")};
}

Json Workshop::json(std::vector<std::string> arguments, const std::string& program) {
    arguments.push_back("--json");
    const Outcome outcome = run(program, arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return Json::parse(outcome.out, nullptr, false);
}

std::string Workshop::write(const std::string& name, const Bytes& content) {
    std::ofstream stream(folder_ / pathOf(name), std::ios::binary);
    stream.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    const std::u8string path = (folder_ / pathOf(name)).u8string();
    return {path.begin(), path.end()};
}

Bytes Workshop::read(const std::string& name) {
    return contentOf(folder_ / pathOf(name));
}

Picture Workshop::printedPage(int number) {
    const Bytes content = contentOf(folder_ / "printed" / pageName(number, ".png"));
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load_from_memory(content.data(), static_cast<int>(content.size()), &width, &height, &channels, 3),
        stbi_image_free);
    EXPECT_TRUE(pixels) << "page " << number << " was not printed";
    if (!pixels) return {};
    EXPECT_EQ(printedSheet(number).value("complete", false), true);
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height) * 3;
    return {static_cast<uint32_t>(width), static_cast<uint32_t>(height),
            Bytes(pixels.get(), pixels.get() + size)};
}

Json Workshop::printedSheet(int number) {
    const Bytes content = contentOf(folder_ / "printed" / pageName(number, ".json"));
    return Json::parse(content, nullptr, false);
}

Bytes png(const Picture& picture, int channels) {
    Bytes bytes;
    stbi_write_png_to_func(append, &bytes, static_cast<int>(picture.width), static_cast<int>(picture.height),
                           channels, picture.pixels.data(), 0);
    return bytes;
}

Bytes jpeg(const Picture& picture) {
    Bytes bytes;
    stbi_write_jpg_to_func(append, &bytes, static_cast<int>(picture.width), static_cast<int>(picture.height), 3,
                           picture.pixels.data(), 95);
    return bytes;
}

Picture quarters(uint32_t width, uint32_t height, const std::string& letters) {
    Picture picture{width, height, {}};
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const char letter = letters[(y >= height / 2 ? 2u : 0u) + (x >= width / 2 ? 1u : 0u)];
            for (const Colour& colour : colours)
                if (colour.letter == letter)
                    picture.pixels.insert(picture.pixels.end(), colour.rgb.begin(), colour.rgb.end());
        }
    }
    return picture;
}

std::string coloursOf(const Picture& picture) {
    return {colourAt(picture, 25, 25), colourAt(picture, 75, 25), colourAt(picture, 25, 75),
            colourAt(picture, 75, 75)};
}

char colourAt(const Picture& picture, unsigned across, unsigned down) {
    if (picture.pixels.empty()) return '?';
    const size_t pixel = size_t{picture.height * down / 100} * picture.width + picture.width * across / 100;
    for (const Colour& colour : colours)
        if (similar(picture.pixels.data() + 3 * pixel, colour)) return colour.letter;
    return '?';
}

}  // namespace test
