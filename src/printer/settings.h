#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;

/// Changes the setting of a tag: a print option of the object, or something that the printer keeps.
/// @param length read for the unique string only, not changed.
bool setPrinterInfo(PrinterObject& printer, uint16_t tag, const uint8_t* data, const uint32_t* length,
                    uint16_t* resultCode);

}  // namespace printer
