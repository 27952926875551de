/// One builder per command. Those that refuse an argument return an empty request, which gives 1006 and is not
/// sent.
#pragma once

#include "device/printer_object.h"
#include "protocol/request.h"

namespace protocol::request {

using device::PageParameters;

Request print(const PageParameters& page) REQUIRES(device::apiLock);

/// Of the section that the page parameters name, or of the whole print.
Request printLong(const PageParameters& page) REQUIRES(device::apiLock);

/// The print command with every value given by the caller.
struct ExplicitPage {
    uint16_t jobNumber;  // the low byte is sent
    uint16_t copies;
    uint16_t width;
    uint16_t length;
    uint8_t mediaCode;
    uint8_t option;
    uint8_t byte9;
};
Request printExplicit(const ExplicitPage& page);

Request flashLed();
Request reset(uint8_t kind);
Request operationButton(uint8_t setting);
Request resetErrorLog();
Request setPrinterParameter(uint8_t number, uint32_t value);

Request getStatus();
Request getMediaInfo();
Request getModelName();
Request getErrorLog();

Request selfDiagnosis(uint8_t kind, uint8_t first, uint8_t second);
Request getSelfDiagnosisResults();
Request getFirmwareInfo(uint8_t component);

/// @param length number of bytes of raw data that follow the acknowledgement.
Request update(uint8_t target, uint32_t start, uint32_t length);

Request getEepromMaintenance(uint8_t address, uint8_t count);
/// @param data not null unless count is 0, otherwise refused.
Request setEepromMaintenance(uint8_t address, uint8_t count, const uint8_t* data);

/// @param text not null, otherwise refused.
/// @param count 1 to 23, otherwise refused.
Request setPrinterUniqueString(const uint8_t* text, uint8_t count);

constexpr uint32_t maintenanceParamCount = 6;
Request setMaintenanceParams(const uint16_t (&values)[maintenanceParamCount]);

Request getMaintenanceData(uint8_t first, uint8_t second);

/// @param data not null, otherwise refused.
/// @param count 1 to 247, otherwise refused.
Request universal(const uint8_t* data, uint8_t count);

Request maintenancePermission(uint8_t address, uint8_t count);
Request getPrinterUniqueString();

}  // namespace protocol::request
