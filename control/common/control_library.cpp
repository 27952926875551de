#include "common/control_library.h"

#include "common/devices.h"

namespace {

using Describe = bool (*)(control::DeviceHandle device, char (&text)[control::textSize]) noexcept;

uint32_t handOut(Describe describe, uint64_t device, void* place) {
    if (place == nullptr) return 0;
    return describe(device, *reinterpret_cast<char(*)[control::textSize]>(place));
}

bool isOpen(uint64_t device) {
    return device < control::maximumDevices &&
           control::findOpenDevice(static_cast<uint32_t>(device)) != control::noDevice;
}

}  // namespace

extern "C" {

uint64_t SDKUsb_Open(uint32_t deviceNumber) {
    return control::openDevice(deviceNumber);
}

uint64_t SDKUsb_OpenEx(uint32_t deviceNumber, uint32_t) {
    return control::openDevice(deviceNumber);
}

void SDKUsb_Close(uint64_t device) {
    control::closeDevice(device);
}

uint64_t SDKUsb_GetDeviceHandle(uint32_t deviceNumber) {
    return control::findOpenDevice(deviceNumber);
}

uint32_t SDKUsb_GetDeviceName(uint64_t device, char* name) {
    return handOut(control::describePath, device, name);
}

uint64_t SDKUsb_GetPipeHandle(uint64_t device, uint32_t, uint8_t pipeNumber, uint32_t) {
    return control::givePipe(device, pipeNumber);
}

void SDKUsb_ClosePipe(uint64_t pipe) {
    control::closePipe(pipe);
}

uint32_t SDKUsb_AbortPipe(uint64_t) {
    return 0;
}

uint32_t SDKUsb_ResetPipe(uint64_t) {
    return 0;
}

uint32_t SDKUsb_ResetDevice(uint64_t) {
    return 0;
}

uint64_t SDKUsb_CheckDeviceName(uint32_t deviceNumber) {
    return control::findOpenDevice(deviceNumber);
}

uint32_t SDKUsb_CheckDevice(uint64_t device) {
    return isOpen(device);
}

uint32_t SDKUsb_GetDeviceIDString(uint64_t device, char* text) {
    return handOut(control::describeDevice, device, text);
}

const char* zprusb_controlLibraryKind() {
    return control::libraryKind;
}
}
