/// Service operations. They don't reserve the printer, but for the model name.
#pragma once

#include "device/printer_object.h"
#include "protocol/requests.h"

namespace printer {

using device::PrinterObject;

bool resetErrorLog(PrinterObject& printer, uint16_t* resultCode);

/// @param data count bytes.
bool setEepromMaintenance(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count,
                          uint16_t* resultCode);

/// @param out receives `ZPRUSB_MAINTENANCE_READ_SIZE` bytes: the memory's, then zeros.
bool getEepromMaintenance(PrinterObject& printer, uint8_t address, uint8_t* out, uint8_t count,
                          uint16_t* resultCode);

/// @param out receives the answer's payload, at most `ZPRUSB_MAX_ANSWER_PAYLOAD_SIZE` bytes.
/// @param outCount receives the low byte of the announced length.
bool universalCommand(PrinterObject& printer, const uint8_t* data, uint8_t count, uint8_t* out,
                      uint8_t* outCount, uint16_t* resultCode);

/// Reserves the printer, and drops its answer.
bool getModelName(PrinterObject& printer, uint16_t* resultCode);

bool setMaintenanceParams(PrinterObject& printer, const uint16_t (&values)[protocol::maintenanceParamCount],
                          uint16_t* resultCode);

/// @param out receives `ZPRUSB_MAINTENANCE_DATA_SIZE` bytes: the answer's payload, then zeros.
bool getMaintenanceData(PrinterObject& printer, uint8_t first, uint8_t second, uint8_t* out,
                        uint16_t* resultCode);

}  // namespace printer
