#include <algorithm>
#include <bit>

#include "commands.h"
#include "failure.h"
#include "firmware_image.h"
#include "text.h"
#include "view.h"

namespace tool {
namespace {

/// A drawing of the memory: one mark for each of the cells, which are as small as the drawing's size allows.
std::string mapOf(const FirmwareImage& image) {
    constexpr size_t cellsPerLine = 64, mostCells = 16 * cellsPerLine, smallestCell = 16;
    const size_t size = image.bytes().size();
    const size_t cell = std::max(smallestCell, std::bit_ceil((size + mostCells - 1) / mostCells));
    std::vector<size_t> dataOfCells((size + cell - 1) / cell);
    for (const AddressRange& range : image.records().ranges) {
        const size_t end = range.last - image.first() + 1;
        for (size_t at = range.first - image.first(), next; at < end; at = next) {
            next = std::min((at / cell + 1) * cell, end);
            dataOfCells[at / cell] += next - at;
        }
    }
    std::string map;
    for (size_t i = 0; i < dataOfCells.size(); ++i) {
        const size_t at = i * cell;
        if (i % cellsPerLine == 0)
            map += "\n  " + longHexadecimal(image.first() + static_cast<uint32_t>(at)) + "  ";
        const bool full = dataOfCells[i] == std::min(cell, size - at);
        map += full ? '#' : dataOfCells[i] == 0 ? '.' : '+';
    }
    return map + "\n\n  " + counted(cell, "byte", "bytes") + " each: # data, . gap, + both\n";
}

std::string textOf(const std::vector<AddressRange>& ranges) {
    constexpr size_t mostLines = 20;
    std::string text;
    for (const AddressRange& range : std::span(ranges).first(std::min(mostLines, ranges.size())))
        text += "  " + longHexadecimal(range.first) + " to " + longHexadecimal(range.last) + ", " +
                counted(range.size(), "byte", "bytes") + "\n";
    if (ranges.size() > mostLines)
        text += "  and " + std::to_string(ranges.size() - mostLines) + " more; --json lists all\n";
    return text;
}

Json jsonOf(const std::vector<AddressRange>& ranges) {
    Json list = Json::array();
    for (const AddressRange& range : ranges) list.push_back({{"first", range.first}, {"last", range.last}});
    return list;
}

std::string warnings(const std::vector<std::string>& doubts) {
    std::string text;
    for (const std::string& doubt : doubts) text += "Warning        " + doubt + "\n";
    return text;
}

View viewOf(const std::string& file, const FirmwareImage& image) {
    const auto length = static_cast<uint32_t>(image.bytes().size());
    const auto checksum = [&](uint32_t mode) {
        return firmware::wordChecksum(image.bytes().data(), length, mode);
    };
    const uint32_t bigEndian = checksum(firmware::bigEndianWords);
    const uint32_t littleEndian = checksum(firmware::littleEndianWords);
    const std::vector<AddressRange>& ranges = image.records().ranges;
    size_t dataSize = 0;
    for (const AddressRange& range : ranges) dataSize += range.size();
    return {{{"file", file},
             {"first", image.first()},
             {"last", image.last()},
             {"length", length},
             {"dataBytes", dataSize},
             {"sum", image.sum()},
             {"sumOfRecords", image.sumOfRecords()},
             {"bigEndianChecksum", bigEndian},
             {"littleEndianChecksum", littleEndian},
             {"ranges", jsonOf(ranges)},
             {"warnings", image.records().doubts}},
            warnings(image.records().doubts) + "Image          " + longHexadecimal(image.first()) + " to " +
                longHexadecimal(image.last()) + ", " + counted(length, "byte", "bytes") + "\nData           " +
                counted(dataSize, "byte", "bytes") + " in " + counted(ranges.size(), "range", "ranges") +
                "; gaps are sent as 0xff\nSum of bytes   " + longHexadecimal(image.sum()) +
                "; of all records " + longHexadecimal(image.sumOfRecords()) + "\nWord checksum  " +
                longHexadecimal(bigEndian) + " big-endian, " + longHexadecimal(littleEndian) +
                " little-endian\n" + mapOf(image) + "\n" + textOf(ranges)};
}

}  // namespace

int run(const Arguments& common, const FirmwareInspectArguments& arguments) {
    show(viewOf(arguments.file, FirmwareImage(arguments.file)), common.json);
    return exitSuccess;
}

}  // namespace tool
