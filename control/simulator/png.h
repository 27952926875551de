/// PNG pictures.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace simulator {

/// @param pixels 8-bit RGB, row by row without gaps.
/// @throws std::bad_alloc
std::vector<uint8_t> encodePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height);

}  // namespace simulator
