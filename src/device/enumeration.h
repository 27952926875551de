#pragma once

#include "device/device_table.h"

namespace device {

/// Finds the printers among the devices of the control library, opens the new ones into the device table, and
/// waits without limit for a new one that another process is using. Finds nothing while the object's control
/// library is not loaded.
/// @param list room for `deviceCount` bytes; receives the device index of each printer in the order found.
/// @return the number of printers found.
uint32_t enumeratePrinters(PrinterObject& printer, uint8_t* list);

}  // namespace device
