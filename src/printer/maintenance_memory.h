/// The printer's maintenance memory: 256 bytes, among them its counters.
#pragma once

#include "device/printer_object.h"
#include "protocol/answer.h"

namespace printer {

using device::PrinterObject;
using device::Result;

/// Does not reserve the printer.
Result readMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count,
                             protocol::Payload& payload);

/// Asks for the permission first; without it the printer refuses the write itself. Does not reserve the
/// printer.
Result writeMaintenanceMemory(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count);

/// @param counterNumber 1 to 6.
Result resetCounter(PrinterObject& printer, uint8_t counterNumber);

}  // namespace printer
