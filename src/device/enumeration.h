#pragma once

#include "device/device_table.h"

namespace device {

/// Finds the printers among the devices of the control library and opens the new ones into the device table.
/// Waits for a new one that another process is using, without limit, but away from the API lock: other calls go
/// on meanwhile, and may find or close the same devices. Finds nothing while the object's control library is
/// not loaded, and when all devices were closed during the wait.
/// @param list room for `deviceCount` bytes; receives the device index of each printer in the order found.
/// @return the number of printers found.
uint32_t enumeratePrinters(PrinterObject& printer, uint8_t* list) REQUIRES(apiLock);

/// Makes the object forget pipes that its device has no more, since a search has opened the device anew.
void forgetStalePipes(PrinterObject& printer) REQUIRES(apiLock);

}  // namespace device
