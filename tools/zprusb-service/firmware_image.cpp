#include "firmware_image.h"

#include <zprusb.h>

#include <cstdlib>

#include "failure.h"
#include "file.h"
#include "firmware/update.h"
#include "result_text.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

constexpr uint64_t largestFile = 256 << 20;

std::string rangeOf(const FirmwareRecords& records) {
    if (records.ranges.empty()) return " The file has no data;";
    const AddressRange whole{records.ranges.front().first, records.ranges.back().last};
    return " The file's data lie from " + longHexadecimal(whole.first) + " to " + longHexadecimal(whole.last) +
           ", " + counted(whole.size(), "byte", "bytes") + ";";
}

}  // namespace

FirmwareImage::FirmwareImage(const std::string& path) {
    const Bytes text = readFile(path, largestFile);
    const std::string file = pathForLibrary(path);
    uint16_t code = firmware::prepareUpdateImage(file.c_str(), job_);
    if (code == ZPRUSB_SUCCESS || code == ZPRUSB_BAD_ADDRESS) records_ = examineRecords(text);
    if (code == ZPRUSB_SUCCESS) code = firmware::readUpdateImage(job_);
    if (code == ZPRUSB_SUCCESS) return;
    std::string reason = "can't be used: " + resultSentence(code);
    if (code == ZPRUSB_BAD_ADDRESS)
        reason += rangeOf(records_) +
                  " permitted are 1 to 524288 bytes from the lowest to the highest address, none of them above "
                  "0xffffffff, and no record outside of them.";
    refuseFile(path, reason);
}

FirmwareImage::~FirmwareImage() {
    std::free(job_.image);
}

}  // namespace tool
