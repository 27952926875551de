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

constexpr Turn quarterClockwise = {true, true, false};

Picture turned(const Picture& picture, Turn turn);

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

/// The page with the picture on it; with a border so wide that nothing is left, it is white.
/// @throws std::bad_alloc
Picture laidOut(const Picture& picture, Extent page, Layout layout);

}  // namespace tool
