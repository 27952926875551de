#include "dump.h"

#include <algorithm>
#include <cstdio>

#include "text.h"

namespace tool {
namespace {

constexpr size_t lineSize = 16;

std::string lineOf(unsigned address, ByteView bytes) {
    std::string characters(bytes.begin(), bytes.end());
    std::ranges::replace_if(
        characters, [](char c) { return c < ' ' || c > '~'; }, '.');
    char start[16];
    std::snprintf(start, sizeof start, "  %04x  ", address);
    return start + padded(hexOf(bytes, " "), 3 * lineSize - 1) + "  |" + characters + "|\n";
}

}  // namespace

std::string hexadecimal(unsigned number) {
    char text[16];
    return {text, static_cast<size_t>(std::snprintf(text, sizeof text, "0x%02x", number))};
}

View dumpOf(unsigned address, ByteView bytes) {
    View view{{{"address", address}, {"bytes", hexOf(bytes, "")}}, ""};
    for (size_t at = 0; at < bytes.size(); at += lineSize)
        view.text += lineOf(address + static_cast<unsigned>(at),
                            bytes.subspan(at, std::min(lineSize, bytes.size() - at)));
    return view;
}

}  // namespace tool
