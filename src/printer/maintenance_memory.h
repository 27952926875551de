/// The printer's maintenance memory: 256 bytes, among them its counters.
#pragma once

#include "device/printer_object.h"
#include "protocol/responses.h"

namespace printer {

using device::PrinterObject;

/// Counter addresses, in the order of the counter numbers; number 0 can be read only.
constexpr uint8_t counterAddresses[] = {0x60, 0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC};
constexpr uint8_t counterLength = 4;

/// Does not reserve the printer.
bool readMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count, protocol::Payload& payload,
                           uint16_t* resultCode);

/// Asks for the permission first; without it the printer refuses the write itself. Does not reserve the
/// printer.
bool writeMaintenanceMemory(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count,
                            uint16_t* resultCode);

/// @param counterNumber 1 to 6.
bool resetCounter(PrinterObject& printer, uint8_t counterNumber, uint16_t* resultCode);

}  // namespace printer
