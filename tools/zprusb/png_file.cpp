#include "png_file.h"

#include <new>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace tool {

Bytes pngOf(const Picture& picture) {
    Bytes png;
    const auto append = [](void* bytes, void* data, int size) {
        const auto* first = static_cast<const uint8_t*>(data);
        static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), first, first + size);
    };
    const auto width = static_cast<int>(picture.width);
    if (stbi_write_png_to_func(append, &png, width, static_cast<int>(picture.height), 3, picture.pixels.data(),
                               3 * width) == 0)
        throw std::bad_alloc();
    return png;
}

}  // namespace tool
