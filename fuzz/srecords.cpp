// Reads any bytes as a firmware file, as an update does and through small buffers.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "firmware/srecord_file.h"
#include "firmware/update.h"
#include "require.h"

namespace {

using firmware::SRecordJob;

uint16_t readAndCheck(SRecordJob& job) {
    const uint16_t code = firmware::readSRecordFile(job);
    require((job.image != nullptr) == (code == ZPRUSB_SUCCESS && job.scanOnly == 0));
    for (const uint16_t known :
         {ZPRUSB_SUCCESS, ZPRUSB_FILE_FAILED, ZPRUSB_NOT_S_RECORDS, ZPRUSB_BAD_CHECKSUM, ZPRUSB_BAD_ADDRESS}) {
        if (code == known) return code;
    }
    std::abort();
}

/// The file's bytes through another buffer become the same image.
void readAgain(SRecordJob job, uint32_t bufferSize, uint16_t code) {
    SRecordJob again = job;
    again.readBufferSize = bufferSize;
    require(readAndCheck(again) == code);
    if (code != ZPRUSB_SUCCESS) return;
    require(std::equal(job.image, job.image + job.imageLength, again.image));
    require(again.imageByteSum == job.imageByteSum && again.dataByteSum == job.dataByteSum);
    std::free(again.image);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const int file = memfd_create("firmware", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    require(ftruncate(file, 0) == 0 && pwrite(file, bytes, size, 0) == static_cast<ssize_t>(size));
    SRecordJob job;
    if (firmware::prepareUpdateImage(path.c_str(), job) != ZPRUSB_SUCCESS) return 0;
    job.wordChecksumMode = firmware::bigEndianWords + size % 2;
    const uint16_t code = readAndCheck(job);
    for (const uint32_t bufferSize : {0u, 1u, 61u}) readAgain(job, bufferSize, code);
    std::free(job.image);
    return 0;
}
