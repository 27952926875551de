#include "fake_control_library.h"

static const struct FakeControlFunctions* installed;

void fakeControlInstall(const struct FakeControlFunctions* functions) {
    installed = functions;
}

#pragma GCC visibility push(default)

uint64_t SDKUsb_Open(uint32_t deviceNumber) {
    return installed->open(deviceNumber);
}
void SDKUsb_Close(uint64_t device) {
    installed->close(device);
}
uint32_t SDKUsb_GetDeviceName(uint64_t device, char* name) {
    return installed->getDeviceName(device, name);
}
uint64_t SDKUsb_GetPipeHandle(uint64_t device, uint32_t zero, uint8_t pipeNumber, uint32_t alsoZero) {
    return zero == 0 && alsoZero == 0 ? installed->getPipeHandle(device, pipeNumber) : ~(uint64_t)0;
}
void SDKUsb_ClosePipe(uint64_t pipe) {
    installed->closePipe(pipe);
}
uint64_t SDKUsb_CheckDeviceName(uint32_t deviceNumber) {
    return installed->checkDeviceName(deviceNumber);
}
uint32_t SDKUsb_CheckDevice(uint64_t device) {
    return installed->checkDevice(device);
}

/* Those that the library only looks for. */
#define UNUSED(name)               \
    uint32_t SDKUsb_##name(void) { \
        return 0;                  \
    }
UNUSED(OpenEx)
UNUSED(GetDeviceHandle)
UNUSED(AbortPipe)
UNUSED(ResetPipe)
UNUSED(GetDeviceIDString)
#ifndef WITHOUT_RESET_DEVICE
UNUSED(ResetDevice)
#endif
