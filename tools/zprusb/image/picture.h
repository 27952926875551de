/// Pictures in memory, and how one is laid out on a page.
#pragma once

#include <cstdint>

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
    fill,  ///< the picture covers the page; what doesn't fit is cut off on both sides alike
    fit,   ///< the whole picture is on the page, in the middle, with white margins
};

/// The page with the picture on it, turned by a quarter when it then suits the page better.
/// @throws std::bad_alloc
Picture laidOut(const Picture& picture, Extent page, Scaling scaling);

}  // namespace tool
