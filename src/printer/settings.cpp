#include "printer/settings.h"

#include <algorithm>

#include "device/reservation.h"
#include "protocol/exchange.h"
#include "protocol/little_endian.h"
#include "protocol/numbers.h"
#include "protocol/requests.h"

namespace printer {

namespace {

namespace request = protocol::request;

/// The caller's value. The length is 0 for settings of a fixed size.
struct Value {
    const uint8_t* data;
    uint32_t length;
};

/// Each of these applies the value of one tag.

Result setOption20(PrinterObject& printer, const Value& value) REQUIRES(device::apiLock) {
    printer.page.printOption20 = value.data[0];
    return device::done;
}

Result setOption21(PrinterObject& printer, const Value& value) REQUIRES(device::apiLock) {
    printer.page.printOption21 = protocol::wordAt(value.data);
    return device::done;
}

Result setOption22(PrinterObject& printer, const Value& value) REQUIRES(device::apiLock) {
    printer.page.printOption22 = protocol::wordAt(value.data);
    return device::done;
}

Result setButton(PrinterObject& printer, const Value& value) {
    const uint8_t setting = value.data[0];
    if (setting != 1 && setting != 2) return device::failure(ZPRUSB_BAD_ARGUMENT);
    return protocol::perform(printer.connection, request::operationButton(setting));
}

Result setParameter(PrinterObject& printer, const Value& value) {
    const uint32_t parameter = protocol::doubleWordAt(value.data);
    return protocol::perform(printer.connection,
                             request::setPrinterParameter(protocol::onlyParameter, parameter));
}

Result storeUniqueString(PrinterObject& printer, const Value& value) {
    const auto count = static_cast<uint8_t>(value.length);
    return protocol::perform(printer.connection, request::setPrinterUniqueString(value.data, count));
}

Result setUniqueString(PrinterObject& printer, const Value& value) {
    if (value.length > ZPRUSB_INFO_UNIQUE_STRING_SIZE) return device::failure(ZPRUSB_BAD_ARGUMENT);
    return storeUniqueString(printer, value);
}

/// Of a length above 255 only the low byte counts here.
Result setUniqueStringNot8(PrinterObject& printer, const Value& value) {
    constexpr uint32_t refusedLength = 8;
    if (value.length == refusedLength) return device::failure(ZPRUSB_BAD_ARGUMENT);
    return storeUniqueString(printer, value);
}

struct Setting {
    uint16_t tag;
    bool hasLength;
    Result (*apply)(PrinterObject& printer, const Value& value);
};

constexpr Setting settings[] = {
    {ZPRUSB_SET_OPTION20, false, setOption20},
    {ZPRUSB_SET_OPTION21, false, setOption21},
    {ZPRUSB_SET_OPTION22, false, setOption22},
    {ZPRUSB_SET_BUTTON, false, setButton},
    {ZPRUSB_SET_PARAMETER, false, setParameter},
    {ZPRUSB_SET_UNIQUE_STRING, true, setUniqueString},
    {ZPRUSB_SET_UNIQUE_STRING_NOT_8, true, setUniqueStringNot8},
};

}  // namespace

Result setPrinterInfo(PrinterObject& printer, uint16_t tag, const uint8_t* data, const uint32_t* length) {
    const device::Reservation reservation = device::reserve(printer);
    if (!reservation) return reservation.result();
    const auto* setting = std::find_if(std::begin(settings), std::end(settings),
                                       [&](const Setting& candidate) { return candidate.tag == tag; });
    if (setting == std::end(settings) || data == nullptr) return device::failure(ZPRUSB_BAD_ARGUMENT);
    if (!setting->hasLength) return setting->apply(printer, {data, 0});
    if (length == nullptr) return device::failure(ZPRUSB_BAD_ARGUMENT);
    return setting->apply(printer, {data, *length});
}

}  // namespace printer
