#include "png.h"

#include <stdexcept>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace simulator {
namespace {

// The host waits for the picture when it asks for anything after a page, so encoding has to be quick: one
// filter that suits photographs instead of a trial of all five. Set before any thread encodes.
[[maybe_unused]] const int onlyFilter = stbi_write_force_png_filter = 1;

void append(void* bytes, void* data, int size) {
    const auto* first = static_cast<const uint8_t*>(data);
    static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), first, first + size);
}

}  // namespace

Bytes encodePng(ByteView pixels, uint32_t width, uint32_t height) {
    Bytes png;
    const int columns = static_cast<int>(width);
    if (stbi_write_png_to_func(append, &png, columns, static_cast<int>(height), 3, pixels.data(),
                               3 * columns) == 0) {
        throw std::runtime_error("no memory for the picture");
    }
    return png;
}

}  // namespace simulator
