#include "pictures.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace test {
namespace {

constexpr size_t signatureSize = 8, chunkFrame = 12, headerSize = 13;
constexpr uint32_t block = 8;

void append(Content& content, const Content& more) {
    content.insert(content.end(), more.begin(), more.end());
}

Content bigEndian(uint32_t value, int size) {
    Content bytes;
    for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
    return bytes;
}

uint32_t numberAt(const Content& content, size_t at) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i) value = value << 8 | content.at(at + i);
    return value;
}

/// The bits of a scan.
class Bits {
public:
    void add(uint32_t value, int count) {
        for (int i = count - 1; i >= 0; --i) {
            byte_ = static_cast<uint8_t>(byte_ << 1 | (value >> i & 1));
            if (++filled_ % 8 != 0) continue;
            bytes_.push_back(byte_);
            if (byte_ == 0xFF) bytes_.push_back(0);
        }
    }

    Content take() {
        while (filled_ % 8 != 0) add(1, 1);
        return std::move(bytes_);
    }

private:
    Content bytes_;
    uint8_t byte_ = 0;
    unsigned filled_ = 0;
};

/// The difference to the block before, with the tables of jpegOf(), and that there is nothing else in the
/// block.
void addBlock(Bits& bits, int difference) {
    const int size = static_cast<int>(std::bit_width(static_cast<unsigned>(std::abs(difference))));
    bits.add(static_cast<uint32_t>(size), 4);
    bits.add(static_cast<uint32_t>(difference < 0 ? difference - 1 : difference), size);
    bits.add(0, 1);
}

/// The colour of a block as it is stored: brightness and two differences of colour, and black as it is. Of
/// inks, what they leave of the light is stored.
std::array<int, 4> storedColour(const Pixels& picture, unsigned channels, uint32_t x, uint32_t y) {
    const size_t column = std::min(x + block / 2, picture.width - 1),
                 row = std::min(y + block / 2, picture.height - 1);
    const uint8_t* pixel = picture.bytes.data() + (row * picture.width + column) * channels;
    const int flip = channels == 4 ? 255 : 0;
    const double red = flip ^ pixel[0], green = flip ^ pixel[1], blue = flip ^ pixel[2];
    const double parts[] = {0.299 * red + 0.587 * green + 0.114 * blue,
                            128 - 0.168736 * red - 0.331264 * green + 0.5 * blue,
                            128 + 0.5 * red - 0.418688 * green - 0.081312 * blue};
    return {static_cast<int>(std::lround(parts[0])), static_cast<int>(std::lround(parts[1])),
            static_cast<int>(std::lround(parts[2])), pixel[channels - 1]};
}

}  // namespace

Content chunkOf(std::string_view name, const Content& content) {
    Content chunk(name.begin(), name.end());
    append(chunk, content);
    const Content sum = bigEndian(static_cast<uint32_t>(crc32_z(0, chunk.data(), chunk.size())), 4);
    chunk.insert(chunk.begin(), 4, 0);
    std::ranges::copy(bigEndian(static_cast<uint32_t>(content.size()), 4), chunk.begin());
    append(chunk, sum);
    return chunk;
}

Content zipped(const Content& content) {
    uLongf size = compressBound(static_cast<uLong>(content.size()));
    Content result(size);
    compress2(result.data(), &size, content.data(), static_cast<uLong>(content.size()), 1);
    result.resize(size);
    return result;
}

Content pngOf(const Pixels& picture, unsigned channels, const Content& chunks) {
    Content header = bigEndian(picture.width, 4);
    append(header, bigEndian(picture.height, 4));
    append(header, {8, static_cast<uint8_t>(channels == 4 ? 6 : 2), 0, 0, 0});
    Content rows;
    for (auto row = picture.bytes.begin(); row != picture.bytes.end(); row += picture.width * channels) {
        rows.push_back(0);
        rows.insert(rows.end(), row, row + picture.width * channels);
    }
    Content png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    for (const Content& part :
         {chunkOf("IHDR", header), chunks, chunkOf("IDAT", zipped(rows)), chunkOf("IEND", {})})
        append(png, part);
    return png;
}

Pixels readPng(const Content& png) {
    constexpr size_t data = signatureSize + chunkFrame + headerSize;
    if (png.size() < data + 8) return {};
    Pixels picture{numberAt(png, signatureSize + 8), numberAt(png, signatureSize + 12), {}};
    const size_t stride = size_t{picture.width} * 3 + 1;
    Content rows(stride * picture.height);
    uLongf size = static_cast<uLongf>(rows.size());
    if (uncompress(rows.data(), &size, png.data() + data + 8, static_cast<uLong>(numberAt(png, data))) !=
            Z_OK ||
        size != rows.size())
        return {};
    for (size_t row = 0; row < rows.size(); row += stride) {
        if (rows[row] > 1) return {};
        for (size_t i = row + 4; rows[row] == 1 && i < row + stride; ++i)
            rows[i] = static_cast<uint8_t>(rows[i] + rows[i - 3]);
        picture.bytes.insert(picture.bytes.end(), rows.begin() + static_cast<ptrdiff_t>(row + 1),
                             rows.begin() + static_cast<ptrdiff_t>(row + stride));
    }
    return picture;
}

Content segmentOf(uint8_t marker, const Content& content) {
    Content segment = {0xFF, marker};
    append(segment, bigEndian(static_cast<uint32_t>(content.size() + 2), 2));
    append(segment, content);
    return segment;
}

Content jpegOf(const Pixels& picture, unsigned channels, const Content& segments) {
    const auto count = static_cast<uint8_t>(channels);
    Content steps(65, 1);
    steps[0] = 0;
    steps[1] = block;  // so that a step is one of the colour's
    Content frame = {8};
    append(frame, bigEndian(picture.height, 2));
    append(frame, bigEndian(picture.width, 2));
    frame.push_back(count);
    Content scan = {count};
    for (uint8_t channel = 1; channel <= channels; ++channel) {
        append(frame, {channel, 0x11, 0});
        append(scan, {channel, 0});
    }
    append(scan, {0, 63, 0});
    Content sizes = {0, 0, 0, 0, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};  // twelve codes of four bits
    for (uint8_t size = 0; size < 12; ++size) sizes.push_back(size);
    const Content ends = {0x10, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};  // one code of one bit
    const Content inks = {'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, 2};

    Bits bits;
    int before[] = {128, 128, 128, 128};
    for (uint32_t y = 0; y < picture.height; y += block)
        for (uint32_t x = 0; x < picture.width; x += block) {
            const std::array<int, 4> colour = storedColour(picture, channels, x, y);
            for (unsigned channel = 0; channel < channels; ++channel)
                addBlock(bits, colour[channel] - std::exchange(before[channel], colour[channel]));
        }
    Content jpeg = {0xFF, 0xD8};
    if (channels == 4) append(jpeg, segmentOf(0xEE, inks));
    for (const Content& part :
         {segments, segmentOf(0xDB, steps), segmentOf(0xC0, frame), segmentOf(0xC4, sizes),
          segmentOf(0xC4, ends), segmentOf(0xDA, scan), bits.take(), Content{0xFF, 0xD9}})
        append(jpeg, part);
    return jpeg;
}

}  // namespace test
