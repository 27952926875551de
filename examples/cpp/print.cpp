// Prints a page on every printer, row by row.
#include <cstdio>

#include "zprusb.hpp"

namespace {

constexpr std::size_t width = 1800, height = 1200;  // 6 x 4 inch at 300 dots per inch

void print(zprusb::Session& session, std::uint8_t printer) {
    session.select(printer);
    session.chooseMedia(0xF1, 15240, 10160);
    zprusb::Page page(session);
    std::vector<std::uint8_t> row(width * 3);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) row[3 * x + 1] = static_cast<std::uint8_t>(255 * y / height);
        page.write(row);
    }
}

}  // namespace

int main() {
    try {
        zprusb::Session session;
        for (const std::uint8_t printer : session.printers()) {
            print(session, printer);
            std::printf("printer %d has the page\n", printer);
        }
        return 0;
    } catch (const zprusb::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
