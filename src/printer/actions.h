/// Making the printer do something without printing. Every failure of an exchange is 2600.
#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

Result blinkLed(PrinterObject& printer);

/// Does not wait until the printer has started again.
Result resetPrinter(PrinterObject& printer);

/// @param mode 0: the printer forgets its curves; 1 and 2: it keeps the data as one of them.
/// @param data `ZPRUSB_TONE_CURVE_SIZE` bytes; not read for mode 0.
Result setToneCurve(PrinterObject& printer, uint8_t mode, const uint8_t* data);

}  // namespace printer
