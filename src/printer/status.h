#pragma once

#include "device/printer_object.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Asks the selected printer for its status and condenses the answer into one code; reserves the printer for
/// that time.
/// @return whether it is ready, with 0.
Result queryStatus(PrinterObject& printer);

/// Asks several printers. The object keeps its own one; if it had none, it selects the last one that is
/// present.
/// @param printerList device indexes, ended by 0xFF or after 128.
/// @param results one code for each index; 2000 for a printer that is not present.
/// @return whether at least one is ready.
bool queryStatusOfAll(PrinterObject& printer, const uint8_t* printerList, uint16_t* results)
    REQUIRES(device::apiLock);

/// How many indexes a printer list holds before its end.
uint32_t lengthOfPrinterList(const uint8_t* printerList);

}  // namespace printer
