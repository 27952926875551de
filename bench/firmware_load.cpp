// A firmware file of 512 KiB becomes an image, against one read() of the same file, and against the usual
// tools.
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "comparisons.h"
#include "firmware/update.h"

namespace bench {

namespace {

constexpr uint32_t imageSize = 0x80000;
constexpr uint32_t recordSize = 32;  // data bytes

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

class FirmwareFile {
public:
    FirmwareFile() {
        const int file = mkstemp(path_);
        const std::string text = recordText();
        size_ = text.size();
        require(write(file, text.data(), size_) == static_cast<ssize_t>(size_), "to write a firmware file");
        close(file);
    }
    ~FirmwareFile() { unlink(path_); }
    FirmwareFile(const FirmwareFile&) = delete;
    FirmwareFile& operator=(const FirmwareFile&) = delete;

    char* path() { return path_; }
    size_t size() const { return size_; }

private:
    char path_[32] = "/tmp/zprusb-bench-XXXXXX";
    size_t size_ = 0;
};

/// Both passes, as an update does it.
void load(const char* path) {
    firmware::SRecordJob job;
    require(firmware::prepareUpdateImage(path, job) == ZPRUSB_SUCCESS, "to scan a firmware file");
    require(firmware::readUpdateImage(job) == ZPRUSB_SUCCESS && job.imageLength == imageSize,
            "to load a firmware file");
    firmware::freeUpdateImage(job.image);
}

void readOnce(FirmwareFile& firmware, void* memory) {
    const int file = open(firmware.path(), O_RDONLY | O_CLOEXEC);
    require(read(file, memory, firmware.size()) == static_cast<ssize_t>(firmware.size()), "read");
    close(file);
}

void readIntoNewMemory(FirmwareFile& firmware) {
    void* memory = mmap(nullptr, firmware.size(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    require(memory != MAP_FAILED, "mmap");
    readOnce(firmware, memory);
    munmap(memory, firmware.size());
}

void runTool(std::vector<const char*> arguments) {
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t quietly;
    posix_spawn_file_actions_init(&quietly);
    posix_spawn_file_actions_addopen(&quietly, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process;
    int status = 1;
    require(posix_spawnp(&process, arguments[0], &quietly, nullptr, const_cast<char**>(arguments.data()),
                         environ) == 0 &&
                waitpid(process, &status, 0) == process && status == 0,
            arguments[0]);
    posix_spawn_file_actions_destroy(&quietly);
}

}  // namespace

void compareFirmwareLoad(const Report& report) {
    FirmwareFile file;
    std::vector<uint8_t> used(file.size());
    const auto compare = [&](const char* limit, double goal, int rounds, const std::function<void()>& base) {
        report({.name = "firmware load, 512 KiB",
                .limit = limit,
                .library = [&] { return secondsOf([&] { load(file.path()); }); },
                .base = [&] { return secondsOf(base); },
                .ratio = Ratio::speed,
                .goal = goal,
                .rounds = rounds});
    };
    compare("one read() into new memory", 0.10, 301, [&] { readIntoNewMemory(file); });
    compare("one read() into memory in the cache", 0.10, 301, [&] { readOnce(file, used.data()); });
    const std::string image = std::string(file.path()) + ".bin";
    compare("one run of objcopy", 2, 51, [&] {
        runTool({"objcopy", "-I", "srec", "-O", "binary", file.path(), image.c_str()});
    });
    compare("one run of srec_cat", 9, 51, [&] {
        runTool({"srec_cat", file.path(), "-o", image.c_str(), "-binary"});
    });
    unlink(image.c_str());
}

}  // namespace bench
