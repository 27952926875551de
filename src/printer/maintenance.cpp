#include "printer/maintenance.h"

#include <algorithm>

#include "device/reservation.h"
#include "printer/maintenance_memory.h"
#include "protocol/exchange.h"
#include "protocol/service_sizes.h"

namespace printer {

using protocol::Payload;

bool resetErrorLog(PrinterObject& printer, uint16_t* resultCode) {
    return protocol::perform(printer, resultCode, protocol::sendResetErrorLog);
}

bool setEepromMaintenance(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count,
                          uint16_t* resultCode) {
    if (data == nullptr && count != 0) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    return writeMaintenanceMemory(printer, address, data, count, resultCode);
}

bool getEepromMaintenance(PrinterObject& printer, uint8_t address, uint8_t* out, uint8_t count,
                          uint16_t* resultCode) {
    if (out == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    Payload payload;
    if (!readMaintenanceMemory(printer, address, count, payload, resultCode)) return false;
    std::copy_n(payload.bytes.begin(), ZPRUSB_MAINTENANCE_READ_SIZE, out);
    return true;
}

bool universalCommand(PrinterObject& printer, const uint8_t* data, uint8_t count, uint8_t* out,
                      uint8_t* outCount, uint16_t* resultCode) {
    if (out == nullptr || outCount == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    Payload payload;
    if (!protocol::sendUniversal(printer.writer, data, count, resultCode)) return false;
    if (!protocol::receiveCountedPayload(printer.reader, payload, *outCount, resultCode)) return false;
    std::copy_n(payload.bytes.begin(), payload.count, out);
    return true;
}

bool getModelName(PrinterObject& printer, uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    protocol::Answer answer;
    return protocol::sendGetModelName(printer.writer, resultCode) &&
           device::workerRead(printer.reader, answer.bytes.data(), answer.count, resultCode);
}

bool setMaintenanceParams(PrinterObject& printer, const uint16_t (&values)[protocol::maintenanceParamCount],
                          uint16_t* resultCode) {
    return protocol::perform(printer, resultCode, protocol::sendSetMaintenanceParams, values);
}

bool getMaintenanceData(PrinterObject& printer, uint8_t first, uint8_t second, uint8_t* out,
                        uint16_t* resultCode) {
    if (out == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    Payload payload;
    if (!protocol::query(printer, payload, resultCode, protocol::sendGetMaintenanceData, first, second))
        return false;
    std::copy_n(payload.bytes.begin(), ZPRUSB_MAINTENANCE_DATA_SIZE, out);
    return true;
}

}  // namespace printer
