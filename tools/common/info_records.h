/// The records of zprusb_getPrinterInfo() with their fields.
#pragma once

#include <zprusb.h>

#include <array>
#include <string>
#include <vector>

#include "bytes.h"

namespace tool {

constexpr double hundredthsPerInch = 2540;

/// An entry of the media list. Lengths are in 1/100 mm.
struct MediaSize {
    uint8_t code;
    uint32_t width;
    uint32_t length;
    uint32_t longest;  // of a variable length
    uint32_t sectionWidth;
    std::array<uint32_t, 5> sectionLengths;

    /// Sizes of a variable length are asked for with a length of the caller's.
    bool variable() const { return code < ZPRUSB_FIRST_EXACT_CODE || code > ZPRUSB_LAST_EXACT_CODE; }
};

/// The printer alone knows what the fields of a component mean.
struct FirmwareComponent {
    unsigned number;
    std::array<std::string, 3> texts;
    std::array<uint32_t, 3> values;
};

/// Counter 0 counts for the whole life of the printer; the others can be set to zero by their number.
struct Counters {
    std::array<uint32_t, ZPRUSB_INFO_COUNTERS_SIZE / 4> values;
};

/// Both zero when there is no error.
struct DeviceError {
    uint8_t group;
    uint8_t detail;
};

struct StatusBytes {
    uint8_t jobNumber;             // of the last page
    Bytes bytes;                   // the first 8, the job number among them
    std::array<uint8_t, 2> flags;  // no page can start while the first one is set; both: not ready
    std::array<uint32_t, 3> values;
};

struct UniqueString {
    std::string text;
};

struct Maintenance {
    Bytes memory;  // from address 0x20
    Bytes data;
};

/// Each of these takes a record of the whole size that the tag has.
std::vector<MediaSize> decodeMediaList(ByteView record);
std::vector<FirmwareComponent> decodeFirmware(ByteView record);
Counters decodeCounters(ByteView record);
DeviceError decodeDeviceError(ByteView record);
StatusBytes decodeStatusBytes(ByteView record);
UniqueString decodeUniqueString(ByteView record);
Maintenance decodeMaintenance(ByteView record);
Bytes decodeErrorLog(ByteView record);

}  // namespace tool
