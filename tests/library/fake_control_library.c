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

uint64_t SDKUsb_OpenEx(uint32_t deviceNumber, uint32_t flags) {
    return deviceNumber + flags;
}
uint64_t SDKUsb_GetDeviceHandle(uint32_t deviceNumber) {
    return deviceNumber;
}
uint32_t SDKUsb_AbortPipe(uint64_t pipe) {
    return pipe != 0;
}
uint32_t SDKUsb_ResetPipe(uint64_t pipe) {
    return pipe != 0;
}
#ifndef WITHOUT_RESET_DEVICE
uint32_t SDKUsb_ResetDevice(uint64_t device) {
    return device != 0;
}
#endif
uint32_t SDKUsb_GetDeviceIDString(uint64_t device, char* text) {
    return device != 0 && text != 0;
}
