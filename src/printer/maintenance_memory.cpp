#include "printer/maintenance_memory.h"

#include "device/reservation.h"
#include "protocol/exchange.h"

namespace printer {

bool readMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count, protocol::Payload& payload,
                           uint16_t* resultCode) {
    return protocol::query(printer, payload, resultCode, protocol::sendGetEepromMaintenance, address, count);
}

bool writeMaintenanceMemory(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count,
                            uint16_t* resultCode) {
    protocol::perform(printer, nullptr, protocol::sendMaintenancePermission, address, count);
    return protocol::perform(printer, resultCode, protocol::sendSetEepromMaintenance, address, count, data);
}

bool resetCounter(PrinterObject& printer, uint8_t counterNumber, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    if (counterNumber < 1 || counterNumber >= std::size(counterAddresses)) {
        return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    }
    constexpr uint8_t zero[counterLength] = {};
    return writeMaintenanceMemory(printer, counterAddresses[counterNumber], zero, counterLength, resultCode);
}

}  // namespace printer
