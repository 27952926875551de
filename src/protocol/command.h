/// The commands of the printer.
#pragma once

#include <cstdint>

namespace protocol {

enum CommandClass : uint8_t { query = 0x00, action = 0x40, system = 0x80, maintenance = 0xC0 };

/// What a request begins with. Its payload length follows as 16 bits, then the payload. Every multi-byte field
/// is little-endian.
struct Command {
    uint8_t commandNo;
    CommandClass commandClass;
};

namespace command {

constexpr Command print{0x01, action};
constexpr Command printLong{0x02, action};
constexpr Command flashLed{0x03, action};
constexpr Command reset{0x04, action};
constexpr Command operationButton{0x06, action};
constexpr Command resetErrorLog{0x07, action};
constexpr Command setPrinterParameter{0x08, action};

constexpr Command getStatus{0x01, query};
constexpr Command getMediaInfo{0x02, query};
constexpr Command getErrorLog{0x04, query};

constexpr Command selfDiagnosis{0x01, maintenance};
constexpr Command getSelfDiagnosisResults{0x02, maintenance};
constexpr Command getFirmwareInfo{0x03, maintenance};
constexpr Command update{0x04, maintenance};
constexpr Command getEepromMaintenance{0x05, maintenance};
constexpr Command setEepromMaintenance{0x06, maintenance};
constexpr Command setPrinterUniqueString{0x07, maintenance};
constexpr Command setMaintenanceParams{0x08, maintenance};
constexpr Command getMaintenanceData{0x09, maintenance};
constexpr Command universal{0xFF, maintenance};

constexpr Command maintenancePermission{0x02, system};
constexpr Command getPrinterUniqueString{0x03, system};

/// The one request without a payload length.
constexpr uint8_t getModelName[16] = {0x03, query, 'Z', 'P', 'R', 'F'};

}  // namespace command

}  // namespace protocol
