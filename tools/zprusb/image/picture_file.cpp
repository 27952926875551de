#include "picture_file.h"

#include <stb/stb_image.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "exif.h"
#include "file.h"

namespace tool {
namespace {

// Beyond these a picture has far more detail than any page can show, or wants to exhaust the memory.
constexpr uint64_t largestFile = 256ull << 20;
constexpr uint64_t mostPixels = 100'000'000;

using Decoded = std::unique_ptr<stbi_uc, decltype(&stbi_image_free)>;

/// The file as the decoder reads it. The decoder goes on with zeros when a JPEG file ends too early, so the
/// attempt to read past the end is remembered.
struct Source {
    ByteView rest;
    bool endPassed = false;

    ByteView take(size_t size) {
        endPassed |= rest.empty() && size > 0;
        const ByteView taken = rest.first(std::min(size, rest.size()));
        rest = rest.subspan(taken.size());
        return taken;
    }
};

constexpr stbi_io_callbacks sourceCallbacks = {
    .read =
        [](void* source, char* data, int size) {
            const ByteView taken = static_cast<Source*>(source)->take(static_cast<size_t>(size));
            std::memcpy(data, taken.data(), taken.size());
            return static_cast<int>(taken.size());
        },
    .skip = [](void* source, int size) { static_cast<Source*>(source)->take(static_cast<size_t>(size)); },
    .eof = [](void* source) { return static_cast<int>(static_cast<Source*>(source)->rest.empty()); },
};

void checkKind(const std::string& path, ByteView content) {
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_memory(content.data(), static_cast<int>(content.size()), &width, &height, &channels))
        refuseFile(path, "is not a PNG or JPEG picture.");
    if (static_cast<uint64_t>(width) * static_cast<uint64_t>(height) > mostPixels)
        refuseFile(path, "has more than " + std::to_string(mostPixels / 1'000'000) +
                             " million pixels; make it smaller first.");
}

/// Lays a picture with transparency on white paper.
Bytes onWhite(const stbi_uc* rgba, size_t count) {
    Bytes pixels;
    pixels.reserve(count * 3);
    for (const stbi_uc* end = rgba + count * 4; rgba != end; rgba += 4)
        for (size_t i = 0; i < 3; ++i)
            pixels.push_back(static_cast<uint8_t>((rgba[i] * rgba[3] + 255 * (255 - rgba[3]) + 127) / 255));
    return pixels;
}

Picture decode(const std::string& path, ByteView content) {
    Source source{content};
    int width = 0, height = 0, channels = 0;
    const Decoded decoded(stbi_load_from_callbacks(&sourceCallbacks, &source, &width, &height, &channels, 4),
                          stbi_image_free);
    if (source.endPassed || (!decoded && source.rest.empty()))
        refuseFile(path, "ends in the middle of the picture.");
    if (!decoded) refuseFile(path, "is damaged.");
    const Extent size{static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
    return {size.width, size.height, onWhite(decoded.get(), size_t{size.width} * size.height)};
}

}  // namespace

Picture loadPicture(const std::string& path) {
    const Bytes content = path == "-" ? readInput(largestFile) : readFile(path, largestFile);
    checkKind(path, content);
    const Turn turn = turnOfExif(content);
    Picture picture = decode(path, content);
    const bool upright = !turn.exchangeSides && !turn.mirrorColumns && !turn.mirrorRows;
    return upright ? picture : turned(picture, turn);
}

}  // namespace tool
