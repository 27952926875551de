#include "picture.h"

#include <stb/stb_image_resize.h>

#include <algorithm>
#include <cmath>
#include <new>

namespace tool {
namespace {

constexpr size_t channels = 3;

/// Where the picture comes to lie: a part of it, in fractions, on a rectangle of the page, in dots.
struct Placement {
    uint32_t x, y;
    Extent size;
    float left, top, right, bottom;
};

Placement filling(const Picture& picture, Extent page, const Gravity& gravity) {
    const double scale = std::max(static_cast<double>(page.width) / picture.width,
                                  static_cast<double>(page.height) / picture.height);
    const double keptX = page.width / (picture.width * scale), keptY = page.height / (picture.height * scale);
    const double cutX = (1 - keptX) * gravity.across, cutY = (1 - keptY) * gravity.down;
    return {0,
            0,
            page,
            static_cast<float>(cutX),
            static_cast<float>(cutY),
            static_cast<float>(cutX + keptX),
            static_cast<float>(cutY + keptY)};
}

uint32_t scaledSide(uint32_t side, double scale, uint32_t limit) {
    return std::clamp(static_cast<uint32_t>(std::lround(side * scale)), 1u, limit);
}

uint32_t share(uint32_t space, double part) {
    return static_cast<uint32_t>(space * part);
}

Placement fitting(const Picture& picture, Extent page, const Gravity& gravity) {
    const double scale = std::min(static_cast<double>(page.width) / picture.width,
                                  static_cast<double>(page.height) / picture.height);
    const Extent size{scaledSide(picture.width, scale, page.width),
                      scaledSide(picture.height, scale, page.height)};
    return {share(page.width - size.width, gravity.across),
            share(page.height - size.height, gravity.down),
            size,
            0,
            0,
            1,
            1};
}

/// Scales in linear light, so that fine patterns keep their brightness. The filter leaves a picture that has
/// the right size already as it is.
void draw(const Picture& picture, const Placement& at, Picture& page) {
    const auto stride = static_cast<int>(page.width * channels);
    uint8_t* corner = page.pixels.data() + (size_t{at.y} * page.width + at.x) * channels;
    const int done = stbir_resize_region(
        picture.pixels.data(), static_cast<int>(picture.width), static_cast<int>(picture.height), 0, corner,
        static_cast<int>(at.size.width), static_cast<int>(at.size.height), stride, STBIR_TYPE_UINT8, channels,
        STBIR_ALPHA_CHANNEL_NONE, 0, STBIR_EDGE_CLAMP, STBIR_EDGE_CLAMP, STBIR_FILTER_CATMULLROM,
        STBIR_FILTER_CATMULLROM, STBIR_COLORSPACE_SRGB, nullptr, at.left, at.top, at.right, at.bottom);
    if (done == 0) throw std::bad_alloc();
}

bool isWide(Extent extent) {
    return extent.width > extent.height;
}

bool isTall(Extent extent) {
    return extent.width < extent.height;
}

bool suitsBetterTurned(Extent picture, Extent page) {
    return (isWide(picture) && isTall(page)) || (isTall(picture) && isWide(page));
}

}  // namespace

Picture turned(const Picture& picture, Turn turn) {
    Picture result = picture;
    if (turn.exchangeSides) std::swap(result.width, result.height);
    const uint8_t* from = picture.pixels.data();
    for (uint32_t y = 0; y < picture.height; ++y) {
        for (uint32_t x = 0; x < picture.width; ++x, from += channels) {
            const uint32_t column = turn.exchangeSides ? y : x;
            const uint32_t row = turn.exchangeSides ? x : y;
            const size_t toColumn = turn.mirrorColumns ? result.width - 1 - column : column;
            const size_t toRow = turn.mirrorRows ? result.height - 1 - row : row;
            std::copy_n(from, channels, result.pixels.data() + (toRow * result.width + toColumn) * channels);
        }
    }
    return result;
}

Picture laidOut(const Picture& picture, Extent page, Layout layout) {
    if (!layout.quarters) layout.quarters = suitsBetterTurned({picture.width, picture.height}, page) ? 1u : 0u;
    if (*layout.quarters > 0) {
        --*layout.quarters;
        layout.gravity = {1 - layout.gravity.down, layout.gravity.across};
        return laidOut(turned(picture, quarterClockwise), page, layout);
    }
    Picture result{page.width, page.height, Bytes(size_t{page.width} * page.height * channels, 0xFF)};
    const uint32_t border = layout.border;
    if (2 * border >= std::min(page.width, page.height)) return result;
    const Extent inner{page.width - 2 * border, page.height - 2 * border};
    Placement place = layout.scaling == Scaling::fill ? filling(picture, inner, layout.gravity)
                                                      : fitting(picture, inner, layout.gravity);
    place.x += border;
    place.y += border;
    draw(picture, place, result);
    return result;
}

}  // namespace tool
