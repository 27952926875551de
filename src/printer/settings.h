#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Changes the setting of a tag: a print option of the object, or something that the printer keeps.
/// @param length read for the unique string only, not changed.
Result setPrinterInfo(PrinterObject& printer, uint16_t tag, const uint8_t* data, const uint32_t* length);

}  // namespace printer
