#include "firmware/update.h"

#include <cstdlib>

#include "device/device_table.h"
#include "platform/thread.h"
#include "protocol/exchange.h"
#include "protocol/requests.h"

namespace firmware {

using device::failure;

namespace {

constexpr uint8_t erasedByte = 0xFF;  // of flash memory that nothing was written to
constexpr uint32_t fileBufferSize = 0x40000;
constexpr uint32_t largestImage = 0x80000;
constexpr uint32_t preparationMilliseconds = 300;

/// Whether the object may be used for updates.
Result checkOpenForUpdate(const PrinterObject& printer) {
    return printer.update.allowed ? device::done : failure(ZPRUSB_NO_OBJECT);
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

Result loadUpdateImage(PrinterObject& printer, const char* path, const ImageFacts& facts, uint8_t*& image) {
    const Result open = checkOpenForUpdate(printer);
    if (!open) return open;
    SRecordJob job;
    uint16_t code = path != nullptr ? prepareUpdateImage(path, job) : uint16_t{ZPRUSB_BAD_ARGUMENT};
    if (code == ZPRUSB_SUCCESS) code = readUpdateImage(job);
    image = job.image;
    report(facts.length, image != nullptr ? job.imageLength : 0);
    report(facts.byteSum, image != nullptr ? job.imageByteSum : 0);
    if (image == nullptr) return failure(code);
    report(facts.startAddress, job.lowestAddress);
    report(facts.endAddress, job.highestAddress);
    return device::done;
}

void freeUpdateImage(uint8_t* image) {
    std::free(image);
}

Result checkUpdateTarget(PrinterObject& printer) {
    const Result open = checkOpenForUpdate(printer);
    if (!open) return open;
    const uint8_t index = printer.deviceIndex;
    const bool isPrinter = index < device::deviceCount && device::deviceTable[index].model != nullptr;
    return isPrinter ? device::done : failure(ZPRUSB_NO_PRINTER);
}

Result startUpdate(PrinterObject& printer, uint8_t target, uint32_t start, uint32_t length) {
    const Result checked = checkUpdateTarget(printer);
    if (!checked) return checked;
    const Result accepted =
        protocol::perform(printer.connection, protocol::request::update(target, start, length));
    if (accepted) platform::sleepMilliseconds(preparationMilliseconds);
    printer.update.bytesSent = 0;
    return accepted ? device::done : failure(ZPRUSB_UPDATE_REFUSED);
}

Result writeUpdateData(PrinterObject& printer, const uint8_t* data, uint32_t length, uint32_t* sent) {
    const Result checked = checkUpdateTarget(printer);
    if (!checked) return checked;
    if (sent == nullptr || (data == nullptr && length != 0)) return failure(ZPRUSB_BAD_ARGUMENT);
    const uint32_t start = printer.update.bytesSent;
    if (length > UINT32_MAX - start) return failure(ZPRUSB_COMMUNICATION);
    if (length == 0) return device::done;
    const Result result = device::directWriteInChunks(printer.connection.writer, data + start, length, sent);
    printer.update.bytesSent += *sent;
    return result;
}

}  // namespace firmware
