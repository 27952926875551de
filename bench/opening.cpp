// Opening, against the least that it takes of the system: load the control library and look up its functions,
// start a thread, and make a lock file for each printer.
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <list>
#include <thread>

#include "comparisons.h"
#include "device/control_library.h"
#include "device/printer_object.h"
#include "printers.h"

namespace bench {

namespace {

#define NAME_OF(member, name) name,
constexpr const char* controlFunctions[] = {CONTROL_FUNCTIONS(NAME_OF)};
#undef NAME_OF

void* bindControlLibrary() {
    void* library = dlopen(BENCH_CONTROL_LIBRARY, RTLD_NOW);
    require(library != nullptr, "dlopen");
    for (const char* name : controlFunctions) require(dlsym(library, name) != nullptr, name);
    return library;
}

/// As the library does when it closes. What comes after a pause takes longer, so all have to come after one.
void pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void setLock(int file, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_len = 1;
    require(fcntl(file, F_OFD_SETLK, &range) == 0, "to lock a file");
}

double bareOpening(const Printers& printers) {
    void* library = nullptr;
    std::vector<int> files;
    pthread_t thread;
    const double seconds = secondsOf([&] {
        library = bindControlLibrary();
        pthread_create(
            &thread, nullptr, [](void*) -> void* { return nullptr; }, nullptr);
        for (size_t number = 0; number < printers.count(); ++number) {
            files.push_back(open("/dev/shm", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
            require(files.back() >= 0, "to make a lock file");
            for (const short type : {short{F_WRLCK}, short{F_UNLCK}}) setLock(files.back(), type);
        }
    });
    pthread_join(thread, nullptr);
    for (const int file : files) close(file);
    dlclose(library);
    pause();
    return seconds;
}

void compareOpenings(const Report& report) {
    for (const size_t count : {1, 8, 128}) {
        Printers printers(count);
        report({.name = "zprusb_open, " + std::to_string(count) + (count == 1 ? " printer" : " printers"),
                .limit = "load, a thread, a lock for each",
                .library =
                    [] {
                        const double seconds =
                            secondsOf([] { require(zprusb_open(nullptr) == 1, "zprusb_open"); });
                        zprusb_close();
                        return seconds;
                    },
                .base = [&] { return bareOpening(printers); },
                .rounds = 201});
    }
}

/// What an object has from its opening on: a binding of the control library, and memory.
struct BareObject {
    BareObject() : library(bindControlLibrary()) {
        size_t next = 0;
        for (const size_t size : {Buffers::imageSize, Buffers::pageSize, Buffers::workSize})
            buffers[next++] = malloc(size);
    }
    ~BareObject() {
        for (void* buffer : buffers) free(buffer);
        dlclose(library);
    }
    BareObject(const BareObject&) = delete;
    BareObject& operator=(const BareObject&) = delete;

    using Buffers = device::WorkingBuffers;
    void* library;
    void* buffers[3];
};

void compareObjects(const Report& report) {
    Printers printers(1);
    for (const uint16_t count : {uint16_t{10}, uint16_t{100}}) {
        report({.name = "zprusb_MakeObject(" + std::to_string(count) + ")",
                .limit = "load, look up, take memory as often",
                .library =
                    [=] {
                        const OpenLibrary library;
                        return secondsOf([&] { require(zprusb_MakeObject(count) == 1, "zprusb_MakeObject"); });
                    },
                .base =
                    [=] {
                        std::list<BareObject> made(1);
                        const double seconds = secondsOf([&] { made.resize(count); });
                        pause();
                        return seconds;
                    },
                .rounds = 201});
    }
}

}  // namespace

void compareOpening(const Report& report) {
    compareOpenings(report);
    compareObjects(report);
}

}  // namespace bench
