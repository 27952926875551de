#pragma once

#include <string>
#include <vector>

#include "bytes.h"
#include "firmware/srecord_file.h"
#include "firmware_records.h"

namespace tool {

/// What a firmware file puts into the printer's memory, from its lowest to its highest address.
class FirmwareImage {
public:
    /// @throws UnusableFile
    explicit FirmwareImage(const std::string& path);
    ~FirmwareImage();
    FirmwareImage(const FirmwareImage&) = delete;
    FirmwareImage& operator=(const FirmwareImage&) = delete;

    uint32_t first() const { return job_.lowestAddress; }
    ByteView bytes() const { return {job_.image, job_.imageLength}; }
    uint32_t last() const { return job_.highestAddress; }

    const FirmwareRecords& records() const { return records_; }

    uint32_t sum() const { return job_.imageByteSum; }
    uint32_t sumOfRecords() const { return job_.dataByteSum; }

private:
    firmware::SRecordJob job_;
    FirmwareRecords records_;
};

}  // namespace tool
