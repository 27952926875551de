/// Pictures in memory, and how one is laid out on a page.
#pragma once

#include <cstdint>
#include <optional>

#include "bytes.h"

namespace tool {

/// In dots.
struct Extent {
    uint32_t width;
    uint32_t height;

    bool operator==(const Extent&) const = default;
};

struct Picture {
    uint32_t width;
    uint32_t height;
    Bytes pixels;  // 8-bit RGB, row by row
};

/// A turn by quarters and mirroring: first the sides are exchanged (mirroring along the diagonal from top left
/// to bottom right), then the result is mirrored.
struct Turn {
    bool exchangeSides;
    bool mirrorColumns;
    bool mirrorRows;
};

constexpr Turn noTurn = {false, false, false};
constexpr Turn quarterClockwise = {true, true, false};

/// One turn after the other.
constexpr Turn operator+(Turn first, Turn then) {
    if (!then.exchangeSides)
        return {first.exchangeSides, first.mirrorColumns != then.mirrorColumns,
                first.mirrorRows != then.mirrorRows};
    return {!first.exchangeSides, first.mirrorRows != then.mirrorColumns,
            first.mirrorColumns != then.mirrorRows};
}

constexpr Extent operator*(Extent extent, Turn turn) {
    return turn.exchangeSides ? Extent{extent.height, extent.width} : extent;
}

enum class Scaling {
    fill,  ///< the picture covers the page; what doesn't fit is cut off
    fit,   ///< the whole picture is on the page, with white margins
};

/// Which part of the upright picture is kept, or where it lies on a page that it doesn't fill: 0 is left or
/// top, 1 right or bottom.
struct Gravity {
    double across = 0.5;
    double down = 0.5;
};

struct Layout {
    Scaling scaling = Scaling::fill;
    Gravity gravity{};
    std::optional<unsigned> quarters{};  // turns clockwise; none: as it suits the page
    uint32_t border = 0;                 // white, on each side, in dots
};

/// A stretch of one side of a picture, which is scaled to so many dots.
struct Stretch {
    double start;  // in pixels of the picture
    double length;
    uint32_t dots;
};

/// Where a picture comes to lie.
struct Placement {
    uint32_t x, y;         // on the page; the stretches tell how far it reaches from there
    Turn turn;             // of the stored picture
    Stretch across, down;  // of the stored picture
};

/// @param stored the size of the picture, which `upright` turns upright.
/// @return none when the border is so wide that nothing is left.
std::optional<Placement> placementOf(Extent stored, Turn upright, Extent page, Layout layout);

}  // namespace tool
