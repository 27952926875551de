#pragma once

#include <string>
#include <vector>

#include "bytes.h"

namespace tool {

/// Addresses may lie beyond 32 bits where a record runs over the end of the memory.
struct AddressRange {
    uint64_t first;
    uint64_t last;

    uint64_t size() const { return last - first + 1; }
};

/// What the text of a firmware file tells beyond the image that it makes.
struct FirmwareRecords {
    std::vector<AddressRange> ranges;  // of the data, in ascending order with gaps between
    std::vector<std::string> doubts;   // sentences about what a sound file does not have
};

/// @param text of a file whose records are known to be whole and rightly summed.
FirmwareRecords examineRecords(ByteView text);

/// An address or a sum, as 0x0012abcd.
std::string longHexadecimal(uint64_t number);

}  // namespace tool
