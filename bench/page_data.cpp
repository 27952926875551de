// Page data on their way to the printer's pipe, against a bare loop of the same writes into the same pipe.
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

#include "comparisons.h"
#include "printers.h"

namespace bench {

namespace {

constexpr size_t chunkSize = 4096;  // what the library hands over at once

/// Something to write into whose other end, if it has one, reads all the time.
class DataPipe {
public:
    enum class Kind { nullDevice, pipe, socketPair };

    explicit DataPipe(Kind kind) {
        if (kind == Kind::nullDevice) {
            ends_[1] = open("/dev/null", O_WRONLY | O_CLOEXEC);
            return;
        }
        require((kind == Kind::pipe ? pipe2(ends_, O_CLOEXEC)
                                    : socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_)) == 0,
                "to make a pipe");
        reader_ = std::jthread([end = ends_[0]] {
            std::vector<uint8_t> buffer(65536);
            while (read(end, buffer.data(), buffer.size()) > 0) {
            }
        });
    }
    ~DataPipe() {
        close(ends_[1]);
        if (reader_.joinable()) reader_.join();
        if (ends_[0] >= 0) close(ends_[0]);
    }
    DataPipe(const DataPipe&) = delete;
    DataPipe& operator=(const DataPipe&) = delete;

    int writer() const { return ends_[1]; }

private:
    int ends_[2] = {-1, -1};
    std::jthread reader_;
};

void writeBare(int pipe, const std::vector<uint8_t>& page) {
    for (size_t sent = 0; sent < page.size(); sent += chunkSize) {
        const size_t size = std::min(chunkSize, page.size() - sent);
        require(write(pipe, page.data() + sent, size) == static_cast<ssize_t>(size), "write");
    }
}

void writeByLibrary(const std::vector<uint8_t>& page) {
    const auto size = static_cast<uint32_t>(page.size());
    require(zprusb_write(page.data(), &size, nullptr) == 1, "zprusb_write");
}

struct Case {
    DataPipe::Kind kind;
    const char* name;
    double goal;
};
constexpr Case cases[] = {{DataPipe::Kind::nullDevice, "the null device", 0.985},
                          {DataPipe::Kind::pipe, "a pipe", 0.97},
                          {DataPipe::Kind::socketPair, "a socket pair", 0.97}};

struct Page {
    const char* name;
    size_t size;
    int rounds;
};
constexpr Page pages[] = {{"6.5 MB", size_t{1800} * 1200 * 3, 301}, {"100 MB", 100'000'000, 21}};

}  // namespace

void comparePageData(const Report& report) {
    for (const Case& where : cases) {
        const DataPipe pipe(where.kind);
        Printers printers(1);
        printers[0].dataPipe = pipe.writer();
        const OpenLibrary library;
        for (const Page& size : pages) {
            const std::vector<uint8_t> page(size.size, 0x80);
            report({.name = std::string("page data, ") + size.name + " into " + where.name,
                    .limit = "bare writes of 4096 bytes",
                    .library = [&] { return secondsOf([&] { writeByLibrary(page); }); },
                    .base = [&] { return secondsOf([&] { writeBare(pipe.writer(), page); }); },
                    .ratio = Ratio::speed,
                    .goal = where.goal,
                    .rounds = size.rounds});
        }
    }
}

}  // namespace bench
