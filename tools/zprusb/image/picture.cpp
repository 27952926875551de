#include "picture.h"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

/// What one side of the picture and the same side of the page have to do with each other.
struct Side {
    uint32_t position;
    Stretch stretch;
};

Side placeSide(uint32_t picture, uint32_t page, double scale, double gravity) {
    const double kept = std::min(static_cast<double>(picture), page / scale);
    const uint32_t dots = std::clamp(static_cast<uint32_t>(std::lround(kept * scale)), 1u, page);
    return {static_cast<uint32_t>((page - dots) * gravity), {(picture - kept) * gravity, kept, dots}};
}

void mirror(Stretch& stretch, uint32_t side) {
    stretch.start = side - stretch.start - stretch.length;
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

std::optional<Placement> placementOf(Extent stored, Turn upright, Extent page, Layout layout) {
    const uint32_t border = layout.border;
    if (2 * uint64_t{border} >= std::min(page.width, page.height)) return std::nullopt;
    Turn turn = upright;
    unsigned quarters = layout.quarters.value_or(suitsBetterTurned(stored * upright, page) ? 1 : 0);
    for (; quarters > 0; --quarters) {
        turn = turn + quarterClockwise;
        layout.gravity = {1 - layout.gravity.down, layout.gravity.across};
    }
    const Extent seen = stored * turn, inner{page.width - 2 * border, page.height - 2 * border};
    const double scaleAcross = static_cast<double>(inner.width) / seen.width,
                 scaleDown = static_cast<double>(inner.height) / seen.height;
    const double scale =
        layout.scaling == Scaling::fill ? std::max(scaleAcross, scaleDown) : std::min(scaleAcross, scaleDown);
    Side across = placeSide(seen.width, inner.width, scale, layout.gravity.across);
    Side down = placeSide(seen.height, inner.height, scale, layout.gravity.down);
    if (turn.mirrorColumns) mirror(across.stretch, seen.width);
    if (turn.mirrorRows) mirror(down.stretch, seen.height);
    Placement place{border + across.position, border + down.position, turn, across.stretch, down.stretch};
    if (turn.exchangeSides) std::swap(place.across, place.down);
    return place;
}

}  // namespace tool
