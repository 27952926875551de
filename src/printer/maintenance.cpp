#include "printer/maintenance.h"

#include <algorithm>

#include "device/reservation.h"
#include "printer/maintenance_memory.h"
#include "protocol/exchange.h"
#include "protocol/service_sizes.h"

namespace printer {

using device::failure;
using protocol::Payload;
using protocol::Request;
namespace request = protocol::request;

Result resetErrorLog(PrinterObject& printer) {
    return protocol::perform(printer.connection, request::resetErrorLog());
}

Result setEepromMaintenance(PrinterObject& printer, uint8_t address, const uint8_t* data, uint8_t count) {
    if (data == nullptr && count != 0) return failure(ZPRUSB_BAD_ARGUMENT);
    return writeMaintenanceMemory(printer, address, data, count);
}

Result getEepromMaintenance(PrinterObject& printer, uint8_t address, uint8_t* out, uint8_t count) {
    if (out == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    Payload payload;
    const Result result = readMaintenanceMemory(printer, address, count, payload);
    if (result) std::copy_n(payload.bytes.begin(), ZPRUSB_MAINTENANCE_READ_SIZE, out);
    return result;
}

Result universalCommand(PrinterObject& printer, const uint8_t* data, uint8_t count, uint8_t* out,
                        uint8_t* outCount) {
    if (out == nullptr || outCount == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    Payload payload;
    const Request request = request::universal(data, count);
    const Result result = protocol::fetchDirectly(printer.connection, request, payload, *outCount);
    if (result) std::copy_n(payload.bytes.begin(), payload.count, out);
    return result;
}

Result getModelName(PrinterObject& printer) {
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    protocol::Answer answer;
    return protocol::exchange(printer.connection, request::getModelName(), answer);
}

Result setMaintenanceParams(PrinterObject& printer, const uint16_t (&values)[request::maintenanceParamCount]) {
    return protocol::perform(printer.connection, request::setMaintenanceParams(values));
}

Result getMaintenanceData(PrinterObject& printer, uint8_t first, uint8_t second, uint8_t* out) {
    if (out == nullptr) return failure(ZPRUSB_BAD_ARGUMENT);
    Payload payload;
    const Result result =
        protocol::fetch(printer.connection, request::getMaintenanceData(first, second), payload);
    if (result) std::copy_n(payload.bytes.begin(), ZPRUSB_MAINTENANCE_DATA_SIZE, out);
    return result;
}

}  // namespace printer
