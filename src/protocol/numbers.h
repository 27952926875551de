/// The values that operations put into requests, and the places from which they take what they hand out.
#pragma once

#include <cstdint>

namespace protocol {

/// Job numbers run from 1 to here, then from 1 again.
constexpr uint8_t lastJobNumber = 255;

/// The printer has one parameter.
constexpr uint8_t onlyParameter = 1;

/// Components of the firmware, numbered from 1.
constexpr uint8_t firmwareComponents = 7;

namespace resetKind {
constexpr uint8_t wholePrinter = 3;
constexpr uint8_t toneCurves = 4;
}  // namespace resetKind

/// What an update can write. The second tone curve follows the first one.
namespace updateTarget {
constexpr uint8_t firstToneCurve = 3;
}  // namespace updateTarget
constexpr uint8_t toneCurves = 2;

namespace maintenanceMemory {
/// In the order of the counter numbers; number 0 can be read only.
constexpr uint8_t counterAddresses[] = {0x60, 0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC};
constexpr uint8_t counterLength = 4;
constexpr uint8_t recordAddress = 0x20;  // of what begins the maintenance record
constexpr uint8_t recordLength = 8;
}  // namespace maintenanceMemory

/// What ends the maintenance record, in the payload of the maintenance data.
namespace maintenanceData {
constexpr uint32_t recordOffset = 6;
constexpr uint32_t recordLength = 10;
}  // namespace maintenanceData

}  // namespace protocol
