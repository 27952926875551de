/// One builder per command: it assembles the request and writes it. None reads the answer; the operation calls
/// a receiver of protocol/responses.h next.
///
/// Each returns whether the request was written, and gives 2600 when it was not. Those that refuse an argument
/// say so; they give 1006 then and send nothing.
#pragma once

#include "device/printer_object.h"

namespace protocol {

using device::PageParameters;
using device::PipeWriter;

bool sendPrint(PipeWriter& writer, const PageParameters& page, uint16_t* resultCode);

/// @param sectionIndex 0 to 5; stored in the page parameters.
bool sendPrintLong(PipeWriter& writer, PageParameters& page, uint8_t sectionIndex, uint16_t* resultCode);

/// The print command with every value given by the caller; written directly, without a time limit.
struct ExplicitPage {
    uint16_t jobNumber;  // the low byte is sent
    uint16_t copies;
    uint16_t width;
    uint16_t length;
    uint8_t mediaCode;
    uint8_t option;
    uint8_t byte9;
};
bool sendPrintExplicit(PipeWriter& writer, const ExplicitPage& page, uint16_t* resultCode);

bool sendFlashLed(PipeWriter& writer, uint16_t* resultCode);
bool sendReset(PipeWriter& writer, uint8_t kind, uint16_t* resultCode);
bool sendOperationButton(PipeWriter& writer, uint8_t setting, uint16_t* resultCode);
bool sendResetErrorLog(PipeWriter& writer, uint16_t* resultCode);
bool sendSetPrinterParameter(PipeWriter& writer, uint8_t number, uint32_t value, uint16_t* resultCode);

bool sendGetStatus(PipeWriter& writer, uint16_t* resultCode);
bool sendGetMediaInfo(PipeWriter& writer, uint16_t* resultCode);
bool sendGetModelName(PipeWriter& writer, uint16_t* resultCode);
bool sendGetErrorLog(PipeWriter& writer, uint16_t* resultCode);

bool sendSelfDiagnosis(PipeWriter& writer, uint8_t kind, uint8_t first, uint8_t second, uint16_t* resultCode);
bool sendGetSelfDiagnosisResults(PipeWriter& writer, uint16_t* resultCode);
bool sendGetFirmwareInfo(PipeWriter& writer, uint8_t component, uint16_t* resultCode);

/// @param length number of bytes of raw data that follow the acknowledgement.
bool sendUpdate(PipeWriter& writer, uint8_t target, uint32_t start, uint32_t length, uint16_t* resultCode);

bool sendGetEepromMaintenance(PipeWriter& writer, uint8_t address, uint8_t count, uint16_t* resultCode);
/// @param data not null unless count is 0, otherwise refused.
bool sendSetEepromMaintenance(PipeWriter& writer, uint8_t address, uint8_t count, const uint8_t* data,
                              uint16_t* resultCode);

/// @param text not null, otherwise refused.
/// @param count 1 to 23, otherwise refused.
bool sendSetPrinterUniqueString(PipeWriter& writer, const uint8_t* text, uint8_t count, uint16_t* resultCode);

constexpr uint32_t maintenanceParamCount = 6;
bool sendSetMaintenanceParams(PipeWriter& writer, const uint16_t (&values)[maintenanceParamCount],
                              uint16_t* resultCode);

bool sendGetMaintenanceData(PipeWriter& writer, uint8_t first, uint8_t second, uint16_t* resultCode);

/// @param data not null, otherwise refused.
/// @param count 1 to 247, otherwise refused.
bool sendUniversal(PipeWriter& writer, const uint8_t* data, uint8_t count, uint16_t* resultCode);

bool sendMaintenancePermission(PipeWriter& writer, uint8_t address, uint8_t count, uint16_t* resultCode);
bool sendGetPrinterUniqueString(PipeWriter& writer, uint16_t* resultCode);

}  // namespace protocol
