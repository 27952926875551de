#include "simulated_end.h"

#include <dlfcn.h>
#include <fcntl.h>

#include <stdexcept>

namespace usb_test {
namespace {

constexpr uint64_t none = ~uint64_t{0};

// A printer that takes no more refuses the next packet; the simulator's own pipe would take a mebibyte.
constexpr int printersBuffer = 4096;

template <class Function>
void find(void* module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(module, name));
    if (function == nullptr) throw std::runtime_error(name);
}

}  // namespace

SimulatedEnd::SimulatedEnd(const std::string& library) {
    void* module = dlopen(library.c_str(), RTLD_NOW);
    if (module == nullptr) throw std::runtime_error(dlerror());
    find(module, "SDKUsb_Open", open_);
    find(module, "SDKUsb_Close", close_);
    find(module, "SDKUsb_GetPipeHandle", pipe_);
    find(module, "SDKUsb_ClosePipe", closePipe_);
}

bool SimulatedEnd::start() {
    device_ = open_(0);
    if (device_ == none) return false;
    requests_ = static_cast<int>(pipe_(device_, 0, 0, 0));
    answers_ = static_cast<int>(pipe_(device_, 0, 1, 0));
    fcntl(requests_, F_SETPIPE_SZ, printersBuffer);
    fcntl(requests_, F_SETFL, fcntl(requests_, F_GETFL) | O_NONBLOCK);
    return true;
}

void SimulatedEnd::stop() {
    if (!isStarted()) return;
    close_(device_);
    closePipe_(static_cast<uint64_t>(requests_));
    closePipe_(static_cast<uint64_t>(answers_));
    requests_ = answers_ = -1;
}

}  // namespace usb_test
