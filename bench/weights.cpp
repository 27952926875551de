// What the library takes of memory: after loading, against libusb-1.0, and for its objects. Fails above the
// limits. Usage: zprusb_weights LIBRARY
#include <dlfcn.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "comparison.h"
#include "device/printer_object.h"
#include "printers.h"

namespace {

constexpr double objectLimit = 0.15;  // of the size of its buffers

/// What the process has to itself, in KiB. Not pages of files, which a new file has in its own way.
long privateMemory() {
    std::ifstream sums("/proc/self/smaps_rollup");
    std::string line;
    long total = 0;
    while (std::getline(sums, line)) {
        if (line.starts_with("Anonymous:")) total += std::atol(line.c_str() + line.find(':') + 1);
    }
    bench::require(total > 0, "to read the private memory");
    return total;
}

/// Both measurements need a process in which nothing has happened yet.
long askFreshProcess(const std::string& what) {
    std::FILE* answer = popen(("'" + std::string(program_invocation_name) + "' " + what).c_str(), "r");
    long kibibytes = -1;
    bench::require(answer != nullptr && std::fscanf(answer, "%ld", &kibibytes) == 1 && pclose(answer) == 0,
                   "to start a process");
    return kibibytes;
}

long memoryOfLoading(const char* library) {
    const long before = privateMemory();
    bench::require(dlopen(library, RTLD_NOW) != nullptr, library);
    return privateMemory() - before;
}

constexpr long objects = 99;  // besides the first

long memoryOfObjects() {
    const bench::Printers printers(1);
    const bench::OpenLibrary library;
    const long before = privateMemory();
    bench::require(zprusb_MakeObject(1 + objects) == 1, "zprusb_MakeObject");
    return privateMemory() - before;
}

bool report(const char* name, long kibibytes, double limit, const char* limitName) {
    const bool met = static_cast<double>(kibibytes) <= limit;
    std::printf("%-36s %6ld KiB, %.2f of %.0f KiB (%s): %s\n", name, kibibytes,
                static_cast<double>(kibibytes) / limit, limit, limitName, met ? "met" : "missed");
    return met;
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 3 && std::strcmp(arguments[1], "loading") == 0) {
        std::printf("%ld\n", memoryOfLoading(arguments[2]));
        return 0;
    }
    if (count == 2 && std::strcmp(arguments[1], "objects") == 0) {
        std::printf("%ld\n", memoryOfObjects());
        return 0;
    }
    bench::require(count == 2, "to find the library's name among the arguments");
    using Buffers = device::WorkingBuffers;
    constexpr long buffers = objects * (Buffers::imageSize + Buffers::pageSize + Buffers::workSize) / 1024;
    const bool light =
        report("private memory after loading", askFreshProcess("loading '" + std::string(arguments[1]) + "'"),
               static_cast<double>(askFreshProcess("loading libusb-1.0.so.0")), "libusb-1.0 in the same run");
    const bool untouched = report("private memory of 99 objects", askFreshProcess("objects"),
                                  objectLimit * buffers, "15 % of their buffers");
    return light && untouched ? 0 : 1;
}
