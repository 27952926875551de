#pragma once

#include <cstdint>

#include "platform/module.h"
#include "platform/pipe.h"

namespace device {

/// What the control library gives for a device that it opens. It asks for the device by its *device number*: a
/// search counts those up from 0. A printer's handle is also its *device index*, its place in the device table;
/// what zprusb.h calls the printer number is that index.
using DeviceHandle = uint64_t;
constexpr DeviceHandle noDevice = ~DeviceHandle{0};

/// The functions of a control library: the member of ControlLibrary, and the name that it exports.
#define CONTROL_FUNCTIONS(FUNCTION)                     \
    FUNCTION(open, "SDKUsb_Open")                       \
    FUNCTION(openEx, "SDKUsb_OpenEx")                   \
    FUNCTION(close, "SDKUsb_Close")                     \
    FUNCTION(getDeviceHandle, "SDKUsb_GetDeviceHandle") \
    FUNCTION(getDeviceName, "SDKUsb_GetDeviceName")     \
    FUNCTION(getPipeHandle, "SDKUsb_GetPipeHandle")     \
    FUNCTION(closePipe, "SDKUsb_ClosePipe")             \
    FUNCTION(abortPipe, "SDKUsb_AbortPipe")             \
    FUNCTION(resetPipe, "SDKUsb_ResetPipe")             \
    FUNCTION(checkDeviceName, "SDKUsb_CheckDeviceName") \
    FUNCTION(checkDevice, "SDKUsb_CheckDevice")         \
    FUNCTION(resetDevice, "SDKUsb_ResetDevice")         \
    FUNCTION(getDeviceIdString, "SDKUsb_GetDeviceIDString")

/// The printer maker's control library, which owns the USB stack. All of its functions have to be there, also
/// those that are not called.
struct ControlLibrary {
    platform::ModuleHandle module = nullptr;

    DeviceHandle (*open)(uint32_t deviceNumber) = nullptr;
    DeviceHandle (*openEx)(uint32_t deviceNumber, uint32_t flags) = nullptr;
    void (*close)(DeviceHandle device) = nullptr;
    DeviceHandle (*getDeviceHandle)(uint32_t deviceNumber) = nullptr;
    uint32_t (*getDeviceName)(DeviceHandle device, char* name) = nullptr;
    platform::PipeHandle (*getPipeHandle)(DeviceHandle device, uint32_t zero, uint8_t pipeNumber,
                                          uint32_t alsoZero) = nullptr;
    void (*closePipe)(platform::PipeHandle pipe) = nullptr;
    uint32_t (*abortPipe)(platform::PipeHandle pipe) = nullptr;
    uint32_t (*resetPipe)(platform::PipeHandle pipe) = nullptr;
    DeviceHandle (*checkDeviceName)(uint32_t deviceNumber) = nullptr;
    uint32_t (*checkDevice)(DeviceHandle device) = nullptr;
    uint32_t (*resetDevice)(DeviceHandle device) = nullptr;
    uint32_t (*getDeviceIdString)(DeviceHandle device, char* text) = nullptr;
};

/// Loads the control library from the folder of this library, unless the process has it. Each call that
/// succeeds needs one leaveControlLibrary().
/// @return null when it can't be loaded, or lacks a function.
const ControlLibrary* useControlLibrary();

/// Unloads it with its last use, unless a thread that could not be ended may return into it. Accepts null.
void leaveControlLibrary(const ControlLibrary* control);

/// In the child of a fork, which loads it for itself.
void resetControlLibraryInChild();

}  // namespace device
