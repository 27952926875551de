// How fast zprusb_write() hands a page to the printer's pipe, compared with bare writes into the same kind of
// pipe with the same reader. Both take turns in one run, so that whatever else the machine does hits both.
#include <zprusb.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "page_reader.h"
#include "timing.h"

using bench::median;
using bench::secondsOf;

namespace {

constexpr int rounds = 101;
constexpr size_t pieceSize = 4096;  // what the library hands over at once

/// @param code by reference, as the call that fills it in may stand beside it among the arguments.
void require(bool done, const char* step, const uint16_t& code = ZPRUSB_SUCCESS) {
    if (done) return;
    std::fprintf(stderr, "page_data: %s failed, code %u\n", step, code);
    std::exit(1);
}

double sendByLibrary(const std::vector<uint8_t>& page) {
    uint16_t code = 0;
    require(zprusb_startpage(nullptr, &code) == 1, "zprusb_startpage", code);
    const auto size = static_cast<uint32_t>(page.size());
    const double seconds =
        secondsOf([&] { require(zprusb_write(page.data(), &size, &code) == 1, "zprusb_write", code); });
    zprusb_endpage(nullptr);
    return seconds;
}

double sendBare(const std::vector<uint8_t>& page, int pipe) {
    return secondsOf([&] {
        for (size_t sent = 0; sent < page.size(); sent += pieceSize) {
            const size_t size = std::min(pieceSize, page.size() - sent);
            require(write(pipe, page.data() + sent, size) == static_cast<ssize_t>(size), "write");
        }
    });
}

void report(const char* name, double seconds) {
    std::printf("%-14s %7.3f ms for %.2f MB: %.0f MB/s\n", name, seconds * 1e3, bench::pageSize / 1e6,
                bench::pageSize / seconds / 1e6);
}

}  // namespace

int main() {
    uint16_t code = 0;
    require(zprusb_open(&code) == 1, "zprusb_open", code);
    require(zprusb_checkMediaInfo(0xF1, bench::pageWidth, bench::pageLength, &code) == 1,
            "zprusb_checkMediaInfo", code);
    int ends[2];
    require(pipe(ends) == 0, "pipe");
    std::thread reader([&] { bench::drain(ends[0], rounds * bench::pageSize); });

    const std::vector<uint8_t> page(bench::pageSize, 0x80);
    std::vector<double> library, bare;
    for (int round = 0; round < rounds; ++round) {
        library.push_back(sendByLibrary(page));
        bare.push_back(sendBare(page, ends[1]));
    }
    reader.join();
    zprusb_close();

    const double libraryMedian = median(library), bareMedian = median(bare);
    report("zprusb_write", libraryMedian);
    report("bare writes", bareMedian);
    std::printf("%-14s %7.3f of the bare speed (medians of %d pages each)\n", "ratio",
                bareMedian / libraryMedian, rounds);
}
