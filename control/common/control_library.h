/// The functions of a control library, as the library above it finds them by name, and one more. A device
/// handle is the number of the device; all-ones means none.
#pragma once

#include <cstdint>

extern "C" {

/// @return the handle, or all-ones when no device with that number is plugged in.
uint64_t SDKUsb_Open(uint32_t deviceNumber);
uint64_t SDKUsb_OpenEx(uint32_t deviceNumber, uint32_t flags);

/// Ends the printer's side of the pipes; the host's ends live on until SDKUsb_ClosePipe().
void SDKUsb_Close(uint64_t device);

uint64_t SDKUsb_GetDeviceHandle(uint32_t deviceNumber);

/// @param name room for 1024 characters; receives the device's interface path.
/// @return 1, or 0 when the handle isn't open.
uint32_t SDKUsb_GetDeviceName(uint64_t device, char* name);

/// @param pipeNumber 0: from the host to the printer; 1: from the printer to the host.
uint64_t SDKUsb_GetPipeHandle(uint64_t device, uint32_t, uint8_t pipeNumber, uint32_t);
void SDKUsb_ClosePipe(uint64_t pipe);

/// Nobody's pipes and devices need to be aborted or reset: these three return 0.
uint32_t SDKUsb_AbortPipe(uint64_t pipe);
uint32_t SDKUsb_ResetPipe(uint64_t pipe);
uint32_t SDKUsb_ResetDevice(uint64_t device);

/// @return the handle of a device that is open and has not been unplugged since, else all-ones.
uint64_t SDKUsb_CheckDeviceName(uint32_t deviceNumber);

/// @return 1 while the open device has not been unplugged, else 0.
uint32_t SDKUsb_CheckDevice(uint64_t device);

/// @param text room for 1024 characters.
uint32_t SDKUsb_GetDeviceIDString(uint64_t device, char* text);

/// What only this project's own control libraries have: in words, which of them it is.
const char* zprusb_controlLibraryKind();
}
