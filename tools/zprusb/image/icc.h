/// Colour profiles of the ICC.
#pragma once

#include <array>
#include <string_view>

#include "bytes.h"

namespace tool {

/// x and y of white, red, green and blue.
using Chromaticities = std::array<double, 8>;

constexpr Chromaticities chromaticitiesOfSrgb = {0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06};

/// A profile for RGB whose bytes are light raised to `gamma`. The gamma that files of sRGB give as their
/// approximation means sRGB.
/// @return empty for sRGB, and for what is no colour space.
Bytes profileOf(double gamma, const Chromaticities& chromaticities);

Bytes profileOfSrgb();

/// Whether these bytes are a profile for a colour space, which has four letters, as far as its header tells.
bool isProfileFor(std::string_view colourSpace, ByteView profile);

}  // namespace tool
