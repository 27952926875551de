/// Picture files, written and read apart from what the programs have for it.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace test {

using Content = std::vector<uint8_t>;

struct Pixels {
    uint32_t width = 0;
    uint32_t height = 0;
    Content bytes{};  // row by row
};

Content chunkOf(std::string_view name, const Content& content);
Content zipped(const Content& content);

/// @param channels 3 or 4, with the last one for opacity.
/// @param chunks more of them, which come before the pixels.
Content pngOf(const Pixels& picture, unsigned channels, const Content& chunks = {});

/// Reads 8-bit RGB whose rows are unfiltered or filtered with their left neighbours.
/// @return no pixels when it is anything else.
Pixels readPng(const Content& png);

/// @param channels 3 for RGB, 4 for inks.
/// @param segments more of them, which come before the picture.
/// @return a baseline file, in which each block of 8 x 8 pixels is of one colour, that in its middle.
Content jpegOf(const Pixels& picture, unsigned channels, const Content& segments = {});

Content segmentOf(uint8_t marker, const Content& content);

}  // namespace test
