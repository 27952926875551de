/// Service operations. They don't reserve the printer, but for the model name.
#pragma once

#include "device/printer_object.h"
#include "protocol/requests.h"

namespace printer {

using device::PrinterObject;
using device::Result;

Result resetErrorLog(PrinterObject& printer);

/// @param data count bytes.
Result setEepromMaintenance(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count);

/// @param out receives `ZPRUSB_MAINTENANCE_READ_SIZE` bytes: the memory's, then zeros.
Result getEepromMaintenance(PrinterObject& printer, uint8_t address, uint8_t* out, uint8_t count);

/// @param out receives the answer's payload, at most `ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE` bytes.
/// @param outCount receives the low byte of the announced length.
Result universalCommand(PrinterObject& printer, const uint8_t* data, uint8_t count, uint8_t* out,
                        uint8_t* outCount);

/// Reserves the printer, and drops its answer.
Result getModelName(PrinterObject& printer);

Result setMaintenanceParams(PrinterObject& printer,
                            const uint16_t (&values)[protocol::request::maintenanceParamCount]);

/// @param out receives `ZPRUSB_MAINTENANCE_DATA_SIZE` bytes: the answer's payload, then zeros.
Result getMaintenanceData(PrinterObject& printer, uint8_t first, uint8_t second, uint8_t* out);

}  // namespace printer
