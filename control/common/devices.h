/// What a control library is made of: each one defines these, and control_library.cpp makes the exported
/// functions of them. They come from any thread, and nothing may be thrown out of them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace control {

using DeviceHandle = uint64_t;  // the device number, 0 to 127
constexpr DeviceHandle noDevice = ~DeviceHandle{0};
constexpr size_t maximumDevices = 128;

using HostPipe = uint64_t;  // the host's end: a descriptor or a file handle that blocks
constexpr HostPipe noPipe = ~HostPipe{0};

constexpr size_t textSize = 1024;  // of a path or an identification, with the zero byte that ends it

/// Which control library it is, in words such as "the simulator".
extern const char* const libraryKind;

/// Opens the device unless it is open. @return none when no device with that number is plugged in.
DeviceHandle openDevice(uint32_t number) noexcept;

/// @return none when the device isn't open or has been unplugged since.
DeviceHandle findOpenDevice(uint32_t number) noexcept;

/// Ends the device's side of its pipes. Ends that were given to the host stay open, the others don't.
void closeDevice(DeviceHandle device) noexcept;

/// @return false, and the text is untouched, when the device isn't open.
bool describePath(DeviceHandle device, char (&text)[textSize]) noexcept;
bool describeDevice(DeviceHandle device, char (&text)[textSize]) noexcept;

HostPipe givePipe(DeviceHandle device, uint8_t number) noexcept;
void closePipe(HostPipe pipe) noexcept;

}  // namespace control
