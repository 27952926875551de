#include "printer/maintenance_memory.h"

#include "device/reservation.h"
#include "protocol/exchange.h"
#include "protocol/numbers.h"
#include "protocol/requests.h"

namespace printer {

namespace request = protocol::request;

Result readMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count,
                             protocol::Payload& payload) {
    return protocol::fetch(printer.connection, request::getEepromMaintenance(address, count), payload);
}

Result writeMaintenanceMemory(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count) {
    // Refused or not, the printer itself sees to what is written without the permission.
    (void)protocol::perform(printer.connection, request::maintenancePermission(address, count));
    return protocol::perform(printer.connection, request::setEepromMaintenance(address, count, data));
}

Result resetCounter(PrinterObject& printer, uint8_t counterNumber) {
    using namespace protocol::maintenanceMemory;
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    if (counterNumber < 1 || counterNumber >= std::size(counterAddresses)) {
        return device::failure(ZPRUSB_BAD_ARGUMENT);
    }
    constexpr uint8_t zero[counterLength] = {};
    return writeMaintenanceMemory(printer, counterAddresses[counterNumber], zero, counterLength);
}

}  // namespace printer
