// Reads any bytes as a picture file and lays it on a page, or as the colour profile of one.
#include <algorithm>

#include "colours.h"
#include "icc.h"
#include "picture_reader.h"
#include "require.h"

namespace {

using namespace tool;

constexpr Extent dots{60, 40};

/// Whatever is in the file, there is a page of that size or a sentence that refuses it.
void layOut(const Bytes& file, bool force) {
    constexpr uint64_t mostPixels = 1 << 18;
    try {
        const PictureReader reader("", file, {.mostPixels = mostPixels, .force = force});
        const Extent size = reader.size();
        require(uint64_t{size.width} * size.height <= mostPixels);
        const Picture page = reader.page(dots, {.scaling = force ? Scaling::fit : Scaling::fill});
        require(page.pixels.size() == size_t{dots.width} * dots.height * 3);
    } catch (const UnusableFile&) {
    }
}

void convert(const Bytes& profile) {
    constexpr uint32_t pixels = 100;
    constexpr uint8_t from[4 * pixels] = {};
    uint8_t to[3 * pixels];
    for (const auto model : {Decoder::Model::rgb, Decoder::Model::cmyk}) {
        try {
            makeConversion(profile, {}, model, Intent::relative)->convert(from, to, pixels);
        } catch (const UnusableProfile&) {
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const Bytes content(bytes, bytes + size);
    if (inspect(content)) {
        layOut(content, false);
        layOut(content, true);
    } else {
        convert(content);
    }
    return 0;
}
