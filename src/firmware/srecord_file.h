/// Reads firmware files: Motorola S-records, as text, into one image of a range of addresses.
#pragma once

#include <cstdint>

namespace firmware {

constexpr uint32_t bigEndianWords = 1;
constexpr uint32_t littleEndianWords = 2;

/// One read: what the caller wants, and what the reader found.
struct SRecordJob {
    const char* inputPath = nullptr;
    const char* imagePath = nullptr;    // where the image goes as a file; null: nowhere
    const char* trailerPath = nullptr;  // where four words about the image go; null: nowhere
    uint32_t startAddress = 0;          // of the image's first byte
    uint32_t endAddress = 0;            // of its last byte
    uint32_t wordChecksumMode = 0;      // one of those above; 0: none
    uint32_t scanOnly = 0;              // not 0: no image and no files, any address
    uint8_t fillByte = 0;               // where no record sets the image
    uint32_t readBufferSize = 0;        // bytes for each request to the file; 0: one
    uint32_t sizeLimit = 0;             // bytes from the lowest to the highest address; 0: any number

    uint32_t lowestAddress = 0;      // of any data record; 0xFFFFFFFF without one
    uint32_t highestAddress = 0;     // last byte of any data record; 0 without one
    uint32_t dataByteSum = 0;        // of all data bytes that were read, overwritten ones too
    uint32_t imageByteSum = 0;       // of all bytes of the image
    uint32_t imageWordChecksum = 0;  // untouched when there is none
    uint32_t imageLength = 0;
    uint8_t* image = nullptr;   // the caller's after a success, to be freed; otherwise null
    uint32_t sizeExceeded = 0;  // whether the addresses span more than the limit, which fails nothing
};

/// @return 0; 1000; 1005 a file can't be read or written, or ends within a record; 3001; 3002; 3003 a record
///         that is not inside the range. After one of the records failed, an output file that was made is
///         empty.
uint16_t readSRecordFile(SRecordJob& job);

/// The negated sum of the words' one's complements; an odd last byte takes no part.
/// @param mode as SRecordJob::wordChecksumMode; 0 for any other.
uint32_t wordChecksum(const uint8_t* bytes, uint32_t length, uint32_t mode);

}  // namespace firmware
