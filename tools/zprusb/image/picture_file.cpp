#include "picture_file.h"

#include <algorithm>

#include "file.h"
#include "icc.h"

namespace tool {
namespace {

/// More for those who raise the limit of pixels.
uint64_t largestPicture(uint64_t mostPixels) {
    return (256ull << 20) * std::max<uint64_t>(1, mostPixels / Reading{}.mostPixels);
}

constexpr uint64_t largestProfile = 16ull << 20;

}  // namespace

PictureReader openPicture(const std::string& path, const Reading& reading) {
    const uint64_t largest = largestPicture(reading.mostPixels);
    return {path, path == "-" ? readInput(largest) : readFile(path, largest), reading};
}

Bytes loadProfile(const std::string& path) {
    Bytes profile = readFile(path, largestProfile);
    if (!isProfileFor("RGB ", profile)) refuseFile(path, "is no ICC profile of a printer that takes RGB.");
    return profile;
}

}  // namespace tool
