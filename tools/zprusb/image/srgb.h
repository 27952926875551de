/// The curve of sRGB.
#pragma once

#include <cmath>

namespace tool {

/// The light of a value; both from 0 to 1.
inline double lightOfSrgb(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

}  // namespace tool
