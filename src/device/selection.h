#pragma once

#include "device/device_table.h"

namespace device {

/// Makes the object work with an entry of the table and its pipes; nothing else of the object changes.
void usePrinter(PrinterObject& printer, uint8_t index);

/// Each of the following selects a printer of the device table for the object, or asks for the selected one.
/// They write 1008 first and 0 on success; the library fills no identifiers and labels, so after opening all
/// are zero.

/// @param number 255 asks.
/// @return the number of the selected printer, or 255.
uint8_t selectByNumber(PrinterObject& printer, uint8_t number, uint16_t* resultCode);

/// @param label 23 bytes; null asks, and gives 2000 when no printer is selected.
/// @return the object's selected label, or null when null was given and no printer is selected.
char* selectByLabel(PrinterObject& printer, const char* label, uint16_t* resultCode);

/// @param id eight 0xFF bytes ask.
/// @return the object's selected identifier.
uint8_t* selectById(PrinterObject& printer, const PrinterId& id, uint16_t* resultCode);

}  // namespace device
