#pragma once

#include <string_view>

namespace platform {

/// Whether one of the kernel's device notifications tells that a USB device was added or removed. It is a line
/// about the event and then texts such as "SUBSYSTEM=usb", each ended by a zero byte. A device's interfaces are
/// no devices.
bool tellsOfUsbDevice(std::string_view notification);

}  // namespace platform
