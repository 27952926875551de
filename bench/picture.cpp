// What a picture costs on its way to a page, as a program of its own, so that it can be compared with others.
// Usage: zprusb_picture page|decode FILE WIDTH HEIGHT    page: writes the page's bytes; decode: decodes, and no
// more
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "picture_reader.h"

namespace {

using namespace tool;

Bytes contentOf(const char* path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Bytes content(static_cast<size_t>(file.tellg()));
    file.seekg(0).read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
    return content;
}

/// At the scale that suits the page, as the reader does.
void decode(const Bytes& file, Extent page) {
    const auto inspection = inspect(file);
    const auto decoder = makeDecoder(file, *inspection, false);
    const Extent size = decoder->size();
    unsigned reduction = 8;
    while (reduction > 1 && (size.width < reduction * page.width || size.height < reduction * page.height))
        reduction /= 2;
    reduction = decoder->start(reduction);
    Bytes row(size_t{size.width} * 4);
    for (uint32_t left = (size.height - 1) / reduction + 1; left > 0; --left) decoder->read(row.data());
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 5) return 2;
    const Extent page{static_cast<uint32_t>(std::stoul(arguments[3])),
                      static_cast<uint32_t>(std::stoul(arguments[4]))};
    if (arguments[1] == std::string("decode")) {
        decode(contentOf(arguments[2]), page);
        return 0;
    }
    const Bytes pixels = PictureReader(arguments[2], contentOf(arguments[2]), {}).page(page, {}).pixels;
    return std::fwrite(pixels.data(), 1, pixels.size(), stdout) == pixels.size() ? 0 : 1;
}
