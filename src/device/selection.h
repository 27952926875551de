#pragma once

#include "device/device_table.h"

namespace device {

/// Makes the object work with an entry of the table and its pipes; nothing else of the object changes.
void usePrinter(PrinterObject& printer, uint8_t index) REQUIRES(apiLock);

/// Each of the following selects a printer of the device table for the object, or asks for the selected one.
/// They give 0, or 1008 without a change; the library fills no identifiers and labels, so after opening all are
/// zero.

/// @param index 255 asks.
Result selectByIndex(PrinterObject& printer, uint8_t index) REQUIRES(apiLock);

/// @param label 23 bytes; null asks, and gives 2000 when no printer is selected.
Result selectByLabel(PrinterObject& printer, const char* label) REQUIRES(apiLock);

/// @param id eight 0xFF bytes ask: the selected printer's becomes the object's.
Result selectById(PrinterObject& printer, const PrinterId& id) REQUIRES(apiLock);

}  // namespace device
