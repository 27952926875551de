// Prints the device path of every printer that the environment's configuration sets up.
#include <cstdio>

#include "control_library.h"

int main() {
    constexpr uint64_t none = ~uint64_t{0};
    unsigned count = 0;
    for (uint64_t device; (device = SDKUsb_Open(count)) != none; ++count) {
        char name[1024] = "";
        SDKUsb_GetDeviceName(device, name);
        std::puts(name);
        SDKUsb_Close(device);
    }
    std::printf("%u printers\n", count);
}
