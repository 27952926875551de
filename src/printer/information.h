#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;

/// Reads one kind of information, with a status check before it.
/// @param buffer null asks for the size of the record.
/// @param length on entry the capacity of the buffer, on return what was copied; as zprusb_getPrinterInfo().
bool getPrinterInfo(PrinterObject& printer, uint16_t tag, uint8_t* buffer, uint32_t* length);

}  // namespace printer
