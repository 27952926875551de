#include "firmware/srecord_file.h"

#include <zprusb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "firmware/byte_sum.h"
#include "firmware/character_source.h"
#include "firmware/hexadecimal.h"

namespace firmware {

namespace {

using platform::File;

enum class RecordKind { refused, header, data, count, start };

/// What a record holds between its count and its checksum: an address of this many bytes, then data. A record
/// that names the start of the program has no data.
struct RecordType {
    RecordKind kind;
    uint8_t addressBytes;
};

constexpr RecordType recordTypes[10] = {
    {RecordKind::header, 2},  {RecordKind::data, 2},  {RecordKind::data, 3},    {RecordKind::data, 4},
    {RecordKind::refused, 0}, {RecordKind::count, 0}, {RecordKind::refused, 0}, {RecordKind::start, 4},
    {RecordKind::start, 3},   {RecordKind::start, 2},
};

/// The bytes of a record that its count stands for, beside the data.
constexpr uint8_t checksumBytes = 1;

/// A number of at most 4 bytes, the most significant first.
/// @param sum the bytes are added to it.
uint32_t decodeNumber(const uint8_t* characters, uint8_t bytes, uint32_t& sum) {
    uint32_t number = 0;
    for (uint8_t i = 0; i < bytes; ++i) {
        const uint8_t byte = decodeByte(characters + 2 * i);
        number = number << 8 | byte;
        sum += byte;
    }
    return number;
}

/// Notes which addresses a data record covers. One without data ends before it begins.
void extendRange(SRecordJob& job, uint32_t address, uint8_t length) {
    job.lowestAddress = std::min(job.lowestAddress, address);
    job.highestAddress = std::max(job.highestAddress, address + length - 1);
}

bool isInRange(const SRecordJob& job, uint32_t address, uint8_t length) {
    if (address < job.startAddress || address > job.endAddress) return false;
    return uint64_t{address - job.startAddress} + length <= job.imageLength;
}

void takeData(SRecordJob& job, uint32_t address, const uint8_t* data, uint8_t length, uint32_t sum) {
    if (job.image != nullptr) std::memcpy(job.image + (address - job.startAddress), data, length);
    job.dataByteSum += sum;
}

/// Reads what follows the count: address, data and checksum. Each is tested as soon as it is there.
uint16_t readBody(CharacterSource& source, const RecordType& type, uint8_t count, SRecordJob& job) {
    const CharacterSource::Piece body = source.take(2u * count);
    const auto length = static_cast<uint8_t>(count - type.addressBytes - checksumBytes);
    const uint8_t* dataText = body.characters + 2 * type.addressBytes;
    const bool isData = type.kind == RecordKind::data;
    uint32_t sum = count;

    if (body.count < 2u * type.addressBytes) return ZPRUSB_FILE_FAILED;
    const uint32_t address = decodeNumber(body.characters, type.addressBytes, sum);
    if (isData && job.image != nullptr && !isInRange(job, address, length)) return ZPRUSB_BAD_ADDRESS;
    if (isData) extendRange(job, address, length);

    if (body.count < 2u * count) return ZPRUSB_FILE_FAILED;
    uint8_t data[roundUpToBlocks(255)];
    decodeBlocks(dataText, data, length);
    const uint32_t dataSum = sumOfBytes(data, length);
    if (isData) takeData(job, address, data, length, dataSum);

    const auto expected = static_cast<uint8_t>(~(sum + dataSum));
    return decodeByte(dataText + 2 * length) == expected ? ZPRUSB_SUCCESS : ZPRUSB_BAD_CHECKSUM;
}

/// Reads the record whose first character comes next.
/// @param characters receives how many it has.
uint16_t readRecord(CharacterSource& source, SRecordJob& job, uint32_t& characters) {
    constexpr uint32_t typeLength = 2, headLength = 4;
    const CharacterSource::Piece head = source.take(headLength);
    if (head.count < typeLength) return ZPRUSB_FILE_FAILED;
    const auto digit = static_cast<uint8_t>(head.characters[1] - '0');
    if (digit >= std::size(recordTypes)) return ZPRUSB_NOT_S_RECORDS;
    const RecordType& type = recordTypes[digit];
    if (type.kind == RecordKind::refused) return ZPRUSB_NOT_S_RECORDS;

    if (head.count < headLength) return ZPRUSB_FILE_FAILED;
    const uint8_t* countText = head.characters + typeLength;
    const uint8_t count = decodeByte(countText);
    if (type.kind == RecordKind::count) {
        characters = headLength + count;  // it stands for characters here, which mean nothing
        return source.take(count).count == count ? ZPRUSB_SUCCESS : ZPRUSB_FILE_FAILED;
    }
    const auto least = static_cast<uint8_t>(type.addressBytes + checksumBytes);
    const bool isLeast = countText[0] == '0' && countText[1] == '0' + least;
    if (type.kind == RecordKind::start ? !isLeast : count < least) return ZPRUSB_NOT_S_RECORDS;
    characters = headLength + 2u * count;
    return readBody(source, type, count, job);
}

/// @return the result of the last record, or of the first that fails.
uint16_t readSRecords(CharacterSource& source, uint32_t size, SRecordJob& job) {
    job.lowestAddress = 0xFFFFFFFF;
    uint16_t result = ZPRUSB_NOT_S_RECORDS;  // of a file without any
    for (uint64_t consumed = 0; consumed < size;) {
        uint32_t skipped, characters;
        if (!source.skipTo('S', static_cast<uint32_t>(size - consumed), skipped)) return ZPRUSB_FILE_FAILED;
        consumed += skipped;
        if (consumed == size) break;
        result = readRecord(source, job, characters);
        if (result != ZPRUSB_SUCCESS) break;
        consumed += characters;
    }
    return result;
}

bool writeTrailer(File& file, const SRecordJob& job) {
    for (const uint32_t word : {job.lowestAddress, job.highestAddress, job.imageByteSum, job.imageLength}) {
        const uint8_t bytes[] = {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8),
                                 static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 24)};
        if (!file.write(bytes, sizeof bytes)) return false;
    }
    return true;
}

/// What is done with the image once all records are in it.
uint16_t finishImage(SRecordJob& job, File& imageFile, File& trailerFile) {
    job.imageByteSum = sumOfBytes(job.image, job.imageLength);
    if (job.wordChecksumMode != 0) {
        job.imageWordChecksum = wordChecksum(job.image, job.imageLength, job.wordChecksumMode);
    }
    const bool imageWritten = !imageFile.isOpen() || imageFile.write(job.image, job.imageLength);
    const bool trailerWritten = !trailerFile.isOpen() || writeTrailer(trailerFile, job);
    return imageWritten && trailerWritten ? ZPRUSB_SUCCESS : ZPRUSB_FILE_FAILED;
}

uint16_t readIntoImage(SRecordJob& job) {
    File input, imageFile, trailerFile;
    if (!input.open(job.inputPath)) return ZPRUSB_FILE_FAILED;
    if (job.image != nullptr && job.imagePath != nullptr && !imageFile.create(job.imagePath)) {
        return ZPRUSB_FILE_FAILED;
    }
    if (job.image != nullptr && job.trailerPath != nullptr && !trailerFile.create(job.trailerPath)) {
        return ZPRUSB_FILE_FAILED;
    }
    CharacterSource source(input, job.readBufferSize);
    if (!source) return ZPRUSB_OUT_OF_MEMORY;
    uint32_t size;
    if (!input.size(size) || !input.rewind()) return ZPRUSB_FILE_FAILED;
    const uint16_t result = readSRecords(source, size, job);
    if (result != ZPRUSB_SUCCESS) return result;
    const uint32_t span = job.highestAddress - job.lowestAddress + 1;
    job.sizeExceeded = job.sizeLimit != 0 && span > job.sizeLimit;
    return job.image != nullptr ? finishImage(job, imageFile, trailerFile) : uint16_t{ZPRUSB_SUCCESS};
}

bool makeImage(SRecordJob& job) {
    job.imageLength = job.endAddress - job.startAddress + 1;
    job.image = static_cast<uint8_t*>(std::malloc(std::max(job.imageLength, 1u)));
    if (job.image == nullptr) return false;
    std::memset(job.image, job.fillByte, job.imageLength);
    return true;
}

}  // namespace

uint16_t readSRecordFile(SRecordJob& job) {
    job.lowestAddress = job.highestAddress = job.dataByteSum = job.imageByteSum = job.imageLength = 0;
    job.image = nullptr;
    if (job.scanOnly == 0 && !makeImage(job)) return ZPRUSB_OUT_OF_MEMORY;
    const uint16_t result = readIntoImage(job);
    if (result != ZPRUSB_SUCCESS) {
        std::free(job.image);
        job.image = nullptr;
    }
    return result;
}

uint32_t wordChecksum(const uint8_t* bytes, uint32_t length, uint32_t mode) {
    if (mode != bigEndianWords && mode != littleEndianWords) return 0;
    const uint32_t words = length / 2;
    uint32_t first = 0, second = 0;  // sums of the words' first and second bytes
    for (uint32_t i = 0; i < words; ++i) {
        first += bytes[2 * i];
        second += bytes[2 * i + 1];
    }
    const uint32_t sumOfWords = mode == bigEndianWords ? first * 0x100 + second : second * 0x100 + first;
    return 0u - (words * 0xFFFF - sumOfWords);
}

}  // namespace firmware
