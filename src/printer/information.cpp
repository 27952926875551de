#include "printer/information.h"

#include <algorithm>

#include "device/reservation.h"
#include "printer/maintenance_memory.h"
#include "printer/media.h"
#include "printer/status.h"
#include "protocol/answer_codes.h"
#include "protocol/exchange.h"
#include "protocol/media_table.h"
#include "protocol/numbers.h"
#include "protocol/requests.h"

namespace printer {

namespace {

using protocol::Answer;
using protocol::firmwareComponents;
using protocol::Payload;
namespace maintenanceData = protocol::maintenanceData;
namespace maintenanceMemory = protocol::maintenanceMemory;
namespace request = protocol::request;

constexpr uint32_t firmwareEntryLength = ZPRUSB_FIRMWARE_ENTRY_SIZE;

/// Each of these assembles the record of one tag in a zeroed buffer; the first exchange that fails ends it.

bool readMedia(PrinterObject& printer, uint8_t* record) {
    protocol::MediaTable table;
    if (!readMediaTable(printer, table)) return false;
    std::copy_n(table.bytes(), ZPRUSB_INFO_MEDIA_SIZE, record);
    return true;
}

bool readFirmware(PrinterObject& printer, uint8_t* record) {
    *record++ = firmwareComponents;
    for (uint8_t component = 1; component <= firmwareComponents; ++component) {
        Payload payload;
        if (!protocol::fetch(printer.connection, request::getFirmwareInfo(component), payload)) return false;
        record = std::copy_n(payload.bytes.begin(), firmwareEntryLength, record);
    }
    return true;
}

bool copyMaintenanceMemory(PrinterObject& printer, uint8_t address, uint8_t count, uint8_t* bytes) {
    Payload payload;
    if (!readMaintenanceMemory(printer, address, count, payload)) return false;
    std::copy_n(payload.bytes.begin(), count, bytes);
    return true;
}

bool readCounters(PrinterObject& printer, uint8_t* record) {
    for (const uint8_t address : maintenanceMemory::counterAddresses) {
        if (!copyMaintenanceMemory(printer, address, maintenanceMemory::counterLength, record)) return false;
        record += maintenanceMemory::counterLength;
    }
    return true;
}

bool readDeviceError(PrinterObject& printer, uint8_t* record) {
    Answer answer;
    if (!protocol::fetchStatus(printer.connection, answer)) return false;
    if (answer.statusCode() != protocol::deviceErrorNumber) return true;
    record[0] = answer.errorGroup();
    record[1] = answer.errorDetail();
    return true;
}

bool readStatusBytes(PrinterObject& printer, uint8_t* record) {
    namespace offset = protocol::statusPayload;
    Answer answer;
    if (!protocol::fetchStatus(printer.connection, answer)) return false;
    const uint8_t* payload = answer.payload();
    record = std::copy_n(payload + offset::jobNumber, 8, record);
    *record++ = payload[offset::firstFlag];
    record = std::copy_n(payload + offset::threeWords, 6, record);
    *record = payload[offset::secondFlag];
    return true;
}

bool readUniqueString(PrinterObject& printer, uint8_t* record) {
    Payload payload;
    if (!protocol::fetch(printer.connection, request::getPrinterUniqueString(), payload)) return false;
    std::copy_n(payload.bytes.begin(), ZPRUSB_INFO_UNIQUE_STRING_SIZE, record);
    return true;
}

bool readMaintenance(PrinterObject& printer, uint8_t* record) {
    constexpr uint8_t memoryLength = maintenanceMemory::recordLength;
    if (!copyMaintenanceMemory(printer, maintenanceMemory::recordAddress, memoryLength, record)) return false;
    Payload payload;
    if (!protocol::fetch(printer.connection, request::getMaintenanceData(0, 0), payload)) return false;
    std::copy_n(payload.bytes.begin() + maintenanceData::recordOffset, maintenanceData::recordLength,
                record + memoryLength);
    return true;
}

bool readErrorLog(PrinterObject& printer, uint8_t* record) {
    Payload payload;
    if (!protocol::fetch(printer.connection, request::getErrorLog(), payload)) return false;
    std::copy_n(payload.bytes.begin(), ZPRUSB_INFO_ERROR_LOG_SIZE, record);
    return true;
}

struct Recipe {
    uint16_t tag;
    uint32_t size;
    bool (*read)(PrinterObject& printer, uint8_t* record);
    bool keepsLengthOnFailure;
};

constexpr Recipe recipes[] = {
    {ZPRUSB_INFO_MEDIA, ZPRUSB_INFO_MEDIA_SIZE, readMedia, false},
    {ZPRUSB_INFO_FIRMWARE, ZPRUSB_INFO_FIRMWARE_SIZE, readFirmware, false},
    {ZPRUSB_INFO_COUNTERS, ZPRUSB_INFO_COUNTERS_SIZE, readCounters, true},
    {ZPRUSB_INFO_DEVICE_ERROR, ZPRUSB_INFO_DEVICE_ERROR_SIZE, readDeviceError, false},
    {ZPRUSB_INFO_STATUS_BYTES, ZPRUSB_INFO_STATUS_BYTES_SIZE, readStatusBytes, false},
    {ZPRUSB_INFO_UNIQUE_STRING, ZPRUSB_INFO_UNIQUE_STRING_SIZE, readUniqueString, false},
    {ZPRUSB_INFO_MAINTENANCE, ZPRUSB_INFO_MAINTENANCE_SIZE, readMaintenance, true},
    {ZPRUSB_INFO_ERROR_LOG, ZPRUSB_INFO_ERROR_LOG_SIZE, readErrorLog, false},
};
constexpr uint32_t largestRecord = ZPRUSB_INFO_FIRMWARE_SIZE;

bool fail(uint32_t* length) {
    *length = 0;
    return false;
}

bool handOutRecord(PrinterObject& printer, const Recipe& recipe, uint8_t* buffer, uint32_t* length) {
    std::array<uint8_t, largestRecord> record{};
    if (!recipe.read(printer, record.data())) return recipe.keepsLengthOnFailure ? false : fail(length);
    *length = std::min(*length, recipe.size);
    std::copy_n(record.begin(), *length, buffer);
    return true;
}

}  // namespace

bool getPrinterInfo(PrinterObject& printer, uint16_t tag, uint8_t* buffer, uint32_t* length) {
    if (length == nullptr) return false;
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return false;
    if (protocol::isUnreachable(queryStatus(printer).code)) return fail(length);
    const auto* recipe = std::find_if(std::begin(recipes), std::end(recipes),
                                      [&](const Recipe& candidate) { return candidate.tag == tag; });
    if (recipe == std::end(recipes)) return fail(length);
    if (buffer != nullptr) return handOutRecord(printer, *recipe, buffer, length);
    *length = recipe->size;
    return true;
}

}  // namespace printer
