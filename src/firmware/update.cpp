#include "firmware/update.h"

#include <cstdlib>

#include "device/device_table.h"
#include "platform/thread.h"
#include "protocol/exchange.h"

namespace firmware {

namespace {

constexpr uint8_t erasedByte = 0xFF;  // of flash memory that nothing was written to
constexpr uint32_t fileBufferSize = 0x40000;
constexpr uint32_t largestImage = 0x80000;
constexpr uint32_t vendor = 0x5A2C;
constexpr uint32_t preparationMilliseconds = 300;

/// Whether the object may be used for updates.
bool isOpenForUpdate(const PrinterObject& printer, uint16_t* resultCode) {
    return printer.update.allowed || device::fail(ZPRUSB_NO_OBJECT, resultCode);
}

void report(uint32_t* fact, uint32_t value) {
    if (fact != nullptr) *fact = value;
}

}  // namespace

uint16_t prepareUpdateImage(const char* path, SRecordJob& job) {
    job = {.inputPath = path,
           .scanOnly = 1,
           .fillByte = erasedByte,
           .readBufferSize = fileBufferSize,
           .sizeLimit = largestImage};
    const uint16_t result = readSRecordFile(job);
    if (result != ZPRUSB_SUCCESS) return result;
    const bool wrapsAround = job.lowestAddress > job.highestAddress;
    const bool isWholeMemory = job.highestAddress - job.lowestAddress == UINT32_MAX;
    if (job.sizeExceeded != 0 || wrapsAround || isWholeMemory) return ZPRUSB_BAD_ADDRESS;
    job.scanOnly = 0;
    job.startAddress = job.lowestAddress;
    job.endAddress = job.highestAddress;
    return ZPRUSB_SUCCESS;
}

uint16_t readUpdateImage(SRecordJob& job) {
    const uint32_t scannedByteSum = job.dataByteSum;
    const uint16_t result = readSRecordFile(job);
    if (result != ZPRUSB_SUCCESS) return result;
    if (job.lowestAddress == job.startAddress && job.highestAddress == job.endAddress &&
        job.dataByteSum == scannedByteSum) {
        return ZPRUSB_SUCCESS;
    }
    freeUpdateImage(job.image);
    job.image = nullptr;
    return ZPRUSB_BAD_ADDRESS;
}

uint8_t* loadUpdateImage(PrinterObject& printer, const char* path, const ImageFacts& facts,
                         uint16_t* resultCode) {
    if (!isOpenForUpdate(printer, resultCode)) return nullptr;
    SRecordJob job;
    uint16_t result = path != nullptr ? prepareUpdateImage(path, job) : uint16_t{ZPRUSB_BAD_ARGUMENT};
    if (result == ZPRUSB_SUCCESS) result = readUpdateImage(job);
    device::setResult(resultCode, result);
    report(facts.length, job.image != nullptr ? job.imageLength : 0);
    report(facts.byteSum, job.image != nullptr ? job.imageByteSum : 0);
    if (job.image == nullptr) return nullptr;
    report(facts.startAddress, job.lowestAddress);
    report(facts.endAddress, job.highestAddress);
    return job.image;
}

void freeUpdateImage(uint8_t* image) {
    std::free(image);
}

bool checkUpdateTarget(PrinterObject& printer, uint16_t* resultCode) {
    if (!isOpenForUpdate(printer, resultCode)) return false;
    const uint8_t index = printer.deviceIndex;
    if (index >= device::deviceCount || device::deviceTable[index].vendorProduct >> 16 != vendor) {
        return device::fail(ZPRUSB_NO_PRINTER, resultCode);
    }
    device::setResult(resultCode, ZPRUSB_SUCCESS);
    return true;
}

bool startUpdate(PrinterObject& printer, uint8_t target, uint32_t start, uint32_t length,
                 uint16_t* resultCode) {
    if (!checkUpdateTarget(printer, resultCode)) return false;
    const bool accepted = protocol::perform(printer, nullptr, protocol::sendUpdate, target, start, length);
    if (accepted) platform::sleepMilliseconds(preparationMilliseconds);
    printer.update.bytesSent = 0;
    device::setResult(resultCode, accepted ? ZPRUSB_SUCCESS : ZPRUSB_UPDATE_REFUSED);
    return accepted;
}

bool writeUpdateData(PrinterObject& printer, const uint8_t* data, uint32_t length, uint32_t* sent,
                     uint16_t* resultCode) {
    if (!checkUpdateTarget(printer, resultCode)) return false;
    if (sent == nullptr || (data == nullptr && length != 0)) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    const uint32_t start = printer.update.bytesSent;
    if (length > UINT32_MAX - start) return device::fail(ZPRUSB_COMMUNICATION, resultCode);
    device::setResult(resultCode, ZPRUSB_SUCCESS);
    if (length == 0) return true;
    const bool success = device::directWriteInChunks(printer.writer, data + start, length, resultCode, sent);
    printer.update.bytesSent += *sent;
    return success;
}

}  // namespace firmware
