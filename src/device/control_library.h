#pragma once

#include <cstdint>

#include "platform/module.h"
#include "platform/pipe.h"

namespace device {

using DeviceHandle = uint64_t;
constexpr DeviceHandle noDevice = ~DeviceHandle{0};

/// An object's binding of the printer maker's control library, which owns the USB stack. All of its functions
/// have to be there, also those that are not called.
struct UsbControlLibrary {
    platform::ModuleHandle module = nullptr;
    bool loaded = false;

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

/// Loads the control library from the folder of this library into the table; does nothing when it is loaded.
/// @return whether it is loaded, with all its functions.
bool load(UsbControlLibrary& control);

/// Empties the table. The library itself stays in memory if a thread that could not be ended may return into
/// it.
void unload(UsbControlLibrary& control);

}  // namespace device
