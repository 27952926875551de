#include "firmware_image.h"

#include <zprusb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "failure.h"
#include "firmware/update.h"
#include "result_text.h"
#include "system.h"

namespace tool {
namespace {

/// Most records go on where the one before them ends.
void noteRecord(void* observer, uint32_t address, uint8_t length) {
    auto& ranges = *static_cast<std::vector<AddressRange>*>(observer);
    if (length == 0) return;
    if (!ranges.empty() && ranges.back().last + 1 == address)
        ranges.back().last += length;
    else
        ranges.push_back({address, address + length - 1});
}

void mergeRanges(std::vector<AddressRange>& ranges) {
    std::ranges::sort(ranges, {}, &AddressRange::first);
    std::vector<AddressRange> merged;
    for (const AddressRange& range : ranges) {
        if (merged.empty() || range.first > merged.back().last + 1)
            merged.push_back(range);
        else
            merged.back().last = std::max(merged.back().last, range.last);
    }
    ranges = std::move(merged);
}

}  // namespace

FirmwareImage::FirmwareImage(const std::string& path) {
    const std::string file = pathForLibrary(path);
    uint16_t code = firmware::prepareUpdateImage(file.c_str(), job_);
    if (code == ZPRUSB_SUCCESS) {
        job_.onData = noteRecord;
        job_.observer = &ranges_;
        code = firmware::readUpdateImage(job_);
    }
    mergeRanges(ranges_);
    if (code == ZPRUSB_SUCCESS) return;
    std::string reason = "'" + path + "' can't be used: " + resultSentence(code);
    if (code == ZPRUSB_BAD_ADDRESS)
        reason += " Its data lie between " + longHexadecimal(job_.lowestAddress) + " and " +
                  longHexadecimal(job_.highestAddress) + ".";
    throw Refusal(reason);
}

FirmwareImage::~FirmwareImage() {
    std::free(job_.image);
}

std::string longHexadecimal(uint32_t number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(number));
    return text;
}

}  // namespace tool
