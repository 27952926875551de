#pragma once

#include <string>
#include <vector>

#include "bytes.h"
#include "firmware/srecord_file.h"

namespace tool {

struct AddressRange {
    uint32_t first;
    uint32_t last;

    uint32_t size() const { return last - first + 1; }
};

/// What a firmware file puts into the printer's memory, from its lowest to its highest address.
class FirmwareImage {
public:
    /// @throws Refusal, WrongUsage
    explicit FirmwareImage(const std::string& path);
    ~FirmwareImage();
    FirmwareImage(const FirmwareImage&) = delete;
    FirmwareImage& operator=(const FirmwareImage&) = delete;

    uint32_t first() const { return job_.lowestAddress; }
    ByteView bytes() const { return {job_.image, job_.imageLength}; }
    uint32_t last() const { return job_.highestAddress; }

    /// What records set, in ascending order, with gaps between.
    const std::vector<AddressRange>& ranges() const { return ranges_; }

    uint32_t sum() const { return job_.imageByteSum; }
    uint32_t sumOfRecords() const { return job_.dataByteSum; }

private:
    firmware::SRecordJob job_;
    std::vector<AddressRange> ranges_;
};

/// An address or a sum, as 0x0012abcd.
std::string longHexadecimal(uint32_t number);

}  // namespace tool
