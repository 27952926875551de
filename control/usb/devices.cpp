#include "common/devices.h"

#include <cstdio>

#include "device_table.h"
#include "host_ends.h"

namespace control {

using usb::ConnectedPrinter;

const char* const libraryKind = "the one for real printers over USB";

DeviceHandle openDevice(uint32_t number) noexcept {
    return usb::openPrinter(number) ? number : noDevice;
}

DeviceHandle findOpenDevice(uint32_t number) noexcept {
    ConnectedPrinter printer;
    return usb::findOpenPrinter(number, printer) ? number : noDevice;
}

void closeDevice(DeviceHandle device) noexcept {
    usb::closePrinter(device);
}

// Hosts reserve a printer by its path, so it is the same in all processes.
bool describePath(DeviceHandle device, char (&text)[textSize]) noexcept {
    ConnectedPrinter printer;
    if (!usb::findOpenPrinter(device, printer)) return false;
    const char* serial = printer.serial[0] != '\0' ? printer.serial : printer.port;
    std::snprintf(text, sizeof text, "\\\\?\\usb#vid_5a2c&pid_0012#%s#{usb-printer-%s}", serial, printer.port);
    return true;
}

bool describeDevice(DeviceHandle device, char (&text)[textSize]) noexcept {
    ConnectedPrinter printer;
    if (!usb::findOpenPrinter(device, printer)) return false;
    std::snprintf(text, sizeof text, "MDL:RQX5820;SN:%s;", printer.serial);
    return true;
}

HostPipe givePipe(DeviceHandle device, uint8_t number) noexcept {
    ConnectedPrinter printer;
    return usb::findOpenPrinter(device, printer) ? usb::giveHostEnd(device, number) : noPipe;
}

void closePipe(HostPipe pipe) noexcept {
    usb::closeHostEnd(pipe);
}

}  // namespace control
