/// The printers of the process by their numbers. A number is a printer's for as long as the process lives: the
/// one at the same port has it again, or the one with the same serial at another port. A new printer gets the
/// lowest number that is free or whose printer is gone.
#pragma once

#include "bus.h"
#include "common/devices.h"

namespace usb {

/// @return whether the printer is open, after looking on the bus and opening it if need be.
bool openPrinter(uint32_t number);

void closePrinter(control::DeviceHandle device);

/// @param printer receives what was read when it was found.
/// @return whether it is open and has not been unplugged.
bool findOpenPrinter(control::DeviceHandle device, ConnectedPrinter& printer);

}  // namespace usb
