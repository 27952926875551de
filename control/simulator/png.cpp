#include "png.h"

#define ZLIB_CONST
#include <zlib.h>

#include <new>
#include <string_view>

namespace simulator {
namespace {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

constexpr size_t channels = 3;

void appendNumber(Bytes& bytes, uint32_t number) {
    for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<uint8_t>(number >> shift));
}

void appendChunk(Bytes& png, std::string_view name, ByteView content) {
    appendNumber(png, static_cast<uint32_t>(content.size()));
    const size_t start = png.size();
    png.insert(png.end(), name.begin(), name.end());
    png.insert(png.end(), content.begin(), content.end());
    appendNumber(png, static_cast<uint32_t>(crc32_z(0, png.data() + start, png.size() - start)));
}

Bytes headerOf(uint32_t width, uint32_t height) {
    Bytes header;
    appendNumber(header, width);
    appendNumber(header, height);
    header.insert(header.end(), {8, 2, 0, 0, 0});  // bits a channel, RGB, the only methods there are
    return header;
}

/// The host waits for the picture when it asks for anything after a page, so encoding has to be quick: one
/// filter that suits photographs, and no search but for runs. That is smaller as well than zlib's quickest
/// search.
class Compressor {
public:
    Compressor() {
        constexpr int level = 1, method = Z_DEFLATED, window = 15, memory = 9;
        if (deflateInit2(&stream_, level, method, window, memory, Z_RLE) != Z_OK) throw std::bad_alloc();
    }
    ~Compressor() { deflateEnd(&stream_); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    void add(ByteView row, int flush) {
        stream_.next_in = row.data();
        stream_.avail_in = static_cast<uInt>(row.size());
        do {
            uint8_t part[32768];
            stream_.next_out = part;
            stream_.avail_out = sizeof part;
            deflate(&stream_, flush);
            compressed_.insert(compressed_.end(), part, stream_.next_out);
        } while (stream_.avail_out == 0);
    }

    const Bytes& compressed() const { return compressed_; }

private:
    z_stream stream_{};
    Bytes compressed_;
};

Bytes compress(ByteView pixels, uint32_t width, uint32_t height) {
    constexpr uint8_t differenceToTheLeft = 1;
    Compressor compressor;
    Bytes filtered(1 + size_t{width} * channels);
    filtered[0] = differenceToTheLeft;
    for (uint32_t y = 0; y < height; ++y) {
        const ByteView row = pixels.subspan(size_t{y} * width * channels, size_t{width} * channels);
        for (size_t i = 0; i < row.size(); ++i)
            filtered[1 + i] = static_cast<uint8_t>(i < channels ? row[i] : row[i] - row[i - channels]);
        compressor.add(filtered, Z_NO_FLUSH);
    }
    compressor.add({}, Z_FINISH);
    return compressor.compressed();
}

}  // namespace

std::vector<uint8_t> encodePng(std::span<const uint8_t> pixels, uint32_t width, uint32_t height) {
    Bytes png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    appendChunk(png, "IHDR", headerOf(width, height));
    appendChunk(png, "IDAT", compress(pixels, width, height));
    appendChunk(png, "IEND", {});
    return png;
}

}  // namespace simulator
