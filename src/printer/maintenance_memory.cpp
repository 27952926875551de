#include "printer/maintenance_memory.h"

#include "device/reservation.h"
#include "protocol/requests.h"

namespace printer {

bool readMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count, protocol::Payload& payload,
                           uint16_t* resultCode) {
    return protocol::sendGetEepromMaintenance(printer.writer, address, count, resultCode) &&
           protocol::receivePayload(printer.reader, payload, resultCode);
}

bool writeMaintenanceMemory(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count,
                            uint16_t* resultCode) {
    if (protocol::sendMaintenancePermission(printer.writer, address, count, nullptr)) {
        protocol::receiveAck(printer.reader, nullptr);
    }
    return protocol::sendSetEepromMaintenance(printer.writer, address, count, data, resultCode) &&
           protocol::receiveAck(printer.reader, resultCode);
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
