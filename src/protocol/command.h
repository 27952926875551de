/// The commands of the printer.
#pragma once

#include <cstdint>

namespace protocol {

enum CommandClass : uint8_t { query = 0x00, action = 0x40, system = 0x80, maintenance = 0xC0 };

/// The frame of a request: these fields in this order, the payload length as 16 bits, then the payload. Every
/// multi-byte field is little-endian.
struct Command {
    uint8_t commandNo;
    CommandClass commandClass;
    uint16_t payloadLength;  // without the counted bytes of a command that carries some
};

namespace command {

constexpr Command print{0x01, action, 14};
constexpr Command printLong{0x02, action, 19};
constexpr Command flashLed{0x03, action, 0};
constexpr Command reset{0x04, action, 1};
constexpr Command operationButton{0x06, action, 1};
constexpr Command resetErrorLog{0x07, action, 0};
constexpr Command setPrinterParameter{0x08, action, 5};

constexpr Command getStatus{0x01, query, 0};
constexpr Command getMediaInfo{0x02, query, 0};
constexpr Command getErrorLog{0x04, query, 0};

constexpr Command selfDiagnosis{0x01, maintenance, 3};
constexpr Command getSelfDiagnosisResults{0x02, maintenance, 0};
constexpr Command getFirmwareInfo{0x03, maintenance, 1};
constexpr Command update{0x04, maintenance, 9};
constexpr Command getEepromMaintenance{0x05, maintenance, 2};
constexpr Command setEepromMaintenance{0x06, maintenance, 2};    // and the counted bytes
constexpr Command setPrinterUniqueString{0x07, maintenance, 1};  // and the counted bytes
constexpr Command setMaintenanceParams{0x08, maintenance, 26};
constexpr Command getMaintenanceData{0x09, maintenance, 2};
constexpr Command universal{0xFF, maintenance, 0};  // and the counted bytes

constexpr Command maintenancePermission{0x02, system, 2};
constexpr Command getPrinterUniqueString{0x03, system, 0};

/// The one request without the frame: it names no payload length.
constexpr uint8_t getModelName[16] = {0x03, query, 'Z', 'P', 'R', 'F'};

}  // namespace command

}  // namespace protocol
