// How fast a firmware file of 512 KiB becomes an image, compared with one read() of the same file: into memory
// that is taken for it, as the image's is, and into memory that has been used before. All take turns in one
// run.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>

#include "firmware/srecord_file.h"
#include "timing.h"

namespace {

constexpr int rounds = 101;
constexpr uint32_t imageSize = 0x80000;
constexpr uint32_t recordSize = 32;  // data bytes

void require(bool done, const char* step) {
    if (done) return;
    std::fprintf(stderr, "firmware_load: %s failed\n", step);
    std::exit(1);
}

/// S3 records of random bytes.
std::string recordText() {
    std::mt19937 random(1);
    std::string text;
    char field[16];
    for (uint32_t address = 0; address < imageSize; address += recordSize) {
        uint32_t sum = 4 + recordSize + 1;
        const auto append = [&](uint32_t byte) {
            std::snprintf(field, sizeof field, "%02X", byte);
            text += field;
            sum += byte;
        };
        std::snprintf(field, sizeof field, "S3%02X", sum);
        text += field;
        for (const unsigned shift : {24u, 16u, 8u, 0u}) append(address >> shift & 0xFF);
        for (uint32_t i = 0; i < recordSize; ++i) append(random() & 0xFF);
        append(~sum & 0xFF);
        text += "\n";
    }
    return text;
}

/// Both passes, as an update does it.
void load(const char* path) {
    firmware::SRecordJob job{.inputPath = path, .scanOnly = 1, .fillByte = 0xFF, .readBufferSize = 0x40000};
    require(firmware::readSRecordFile(job) == 0, "the scan");
    job.scanOnly = 0;
    job.startAddress = job.lowestAddress;
    job.endAddress = job.highestAddress;
    require(firmware::readSRecordFile(job) == 0 && job.imageLength == imageSize, "the load");
    std::free(job.image);
}

void readOnce(const char* path, void* memory, size_t size) {
    const int file = open(path, O_RDONLY);
    require(read(file, memory, size) == static_cast<ssize_t>(size), "read");
    close(file);
}

void readIntoNewMemory(const char* path, size_t size) {
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED, "mmap");
    readOnce(path, memory, size);
    munmap(memory, size);
}

}  // namespace

int main() {
    const std::string text = recordText();
    char path[] = "/tmp/firmware_load-XXXXXX";
    const int file = mkstemp(path);
    require(file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "write");
    close(file);

    std::vector<double> loads, newReads, usedReads;
    std::string used = text;
    for (int round = 0; round < rounds; ++round) {
        loads.push_back(bench::secondsOf([&] { load(path); }));
        newReads.push_back(bench::secondsOf([&] { readIntoNewMemory(path, text.size()); }));
        usedReads.push_back(bench::secondsOf([&] { readOnce(path, used.data(), used.size()); }));
    }
    unlink(path);

    const double loaded = bench::median(loads);
    const double megabytes = static_cast<double>(text.size()) / 1e6;
    std::printf("firmware load  %7.0f MB/s of text\n", megabytes / loaded);
    std::printf("%-14s %7.3f of one read() into new memory, %.3f into used memory (medians of %d)\n", "ratio",
                bench::median(newReads) / loaded, bench::median(usedReads) / loaded, rounds);
}
