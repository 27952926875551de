#include "page_file.h"

#include <algorithm>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "hidden_file.h"
#include "png.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

std::string numberedName(uint32_t number) {
    char name[16];
    std::snprintf(name, sizeof name, "%04u", static_cast<unsigned>(number));
    return name;
}

// 0 for files that are no pages.
uint32_t pageNumber(const fs::path& file) {
    constexpr size_t maximumDigits = 9;
    const fs::path stem = file.stem();
    if (stem.native().size() > maximumDigits) return 0;
    uint32_t number = 0;
    for (const auto digit : stem.native()) {
        if (digit < '0' || digit > '9') return 0;
        number = 10 * number + static_cast<uint32_t>(digit - '0');
    }
    return number;
}

uint32_t highestNumber(const fs::path& folder) {
    uint32_t highest = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        highest = std::max(highest, pageNumber(entry.path()));
    }
    return highest;
}

nlohmann::ordered_json dataSheet(const PrinterSetup& printer, const Page& page, size_t length, size_t arrived) {
    nlohmann::ordered_json sheet{{"printer", printer.serial},
                                 {"jobNumber", page.jobNumber},
                                 {"copies", page.copies},
                                 {"mediaCode", page.mediaCode},
                                 {"widthMillimetres", page.width / 100.0},
                                 {"lengthMillimetres", page.length / 100.0},
                                 {"widthPixels", pixelsOf(page.width)},
                                 {"lengthPixels", pixelsOf(page.length)},
                                 {"option20", page.option20},
                                 {"option21", page.option21},
                                 {"option22", page.option22}};
    if (page.section) sheet["section"] = *page.section;
    sheet["complete"] = arrived == length;
    sheet["bytesArrived"] = arrived;
    return sheet;
}

}  // namespace

fs::path writePage(const PrinterSetup& printer, const Page& page, const Bytes& pixels, size_t arrived) {
    const fs::path& folder = printer.outputFolder;
    fs::create_directories(folder);
    const Bytes png = encodePng(pixels, pixelsOf(page.width), pixelsOf(page.length));
    const std::string text = dataSheet(printer, page, pixels.size(), arrived).dump(4) + "\n";
    const HiddenFile picture(folder, png.data(), png.size());
    const HiddenFile sheet(folder, text.data(), text.size());
    for (uint32_t number = highestNumber(folder) + 1;; ++number) {
        const fs::path name = folder / numberedName(number);
        if (!picture.moveToFree(fs::path(name).concat(".png"))) continue;
        sheet.moveToFree(fs::path(name).concat(".json"));
        return fs::path(name).concat(".png");
    }
}

}  // namespace simulator
