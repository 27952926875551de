// A program without the unwinder in it, in which the system can load none any more before or after its first
// thread has started. It tells what becomes of a thread that is ended by force.
#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "platform/thread.h"
#include "transfer.h"

namespace {

void refuseFiles() {
    const rlimit none{};
    setrlimit(RLIMIT_NOFILE, &none);
}

const char* endThread(bool filesRefused) {
    static Transfer read{platform::noPipe, {0}};
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    read.pipe = static_cast<platform::PipeHandle>(ends[0]);
    if (filesRefused) refuseFiles();
    platform::Thread* thread = platform::startThread(readOnce, &read);
    refuseFiles();
    return platform::endThreadByForce(thread) ? "ended" : "left behind";
}

}  // namespace

int main(int, char** arguments) {
    const bool loaded = dlopen("libgcc_s.so.1", RTLD_NOW | RTLD_NOLOAD) != nullptr;
    std::puts(loaded ? "loaded" : endThread(std::string_view(arguments[1]) == "before"));
}
