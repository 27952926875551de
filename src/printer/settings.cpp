#include "printer/settings.h"

#include <algorithm>

#include "device/reservation.h"
#include "protocol/exchange.h"
#include "protocol/little_endian.h"

namespace printer {

namespace {

/// The caller's value. The length is 0 for settings of a fixed size.
struct Value {
    const uint8_t* data;
    uint32_t length;
};

/// Each of these applies the value of one tag; the code is 0 when it begins.

bool setOption20(PrinterObject& printer, const Value& value, uint16_t*) {
    printer.page.printOption20 = value.data[0];
    return true;
}

bool setOption21(PrinterObject& printer, const Value& value, uint16_t*) {
    printer.page.printOption21 = protocol::wordAt(value.data);
    return true;
}

bool setOption22(PrinterObject& printer, const Value& value, uint16_t*) {
    printer.page.printOption22 = protocol::wordAt(value.data);
    return true;
}

bool setButton(PrinterObject& printer, const Value& value, uint16_t* resultCode) {
    const uint8_t setting = value.data[0];
    if (setting != 1 && setting != 2) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    return protocol::perform(printer, resultCode, protocol::sendOperationButton, setting);
}

bool setParameter(PrinterObject& printer, const Value& value, uint16_t* resultCode) {
    constexpr uint8_t onlyParameter = 1;
    const uint32_t parameter = protocol::doubleWordAt(value.data);
    return protocol::perform(printer, resultCode, protocol::sendSetPrinterParameter, onlyParameter, parameter);
}

bool storeUniqueString(PrinterObject& printer, const Value& value, uint16_t* resultCode) {
    const auto count = static_cast<uint8_t>(value.length);
    return protocol::perform(printer, resultCode, protocol::sendSetPrinterUniqueString, value.data, count);
}

bool setUniqueString(PrinterObject& printer, const Value& value, uint16_t* resultCode) {
    if (value.length > ZPRUSB_INFO_UNIQUE_STRING_SIZE) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    return storeUniqueString(printer, value, resultCode);
}

/// Of a length above 255 only the low byte counts here.
bool setUniqueStringNot8(PrinterObject& printer, const Value& value, uint16_t* resultCode) {
    constexpr uint32_t refusedLength = 8;
    if (value.length == refusedLength) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    return storeUniqueString(printer, value, resultCode);
}

struct Setting {
    uint16_t tag;
    bool hasLength;
    bool (*apply)(PrinterObject& printer, const Value& value, uint16_t* resultCode);
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

bool setPrinterInfo(PrinterObject& printer, uint16_t tag, const uint8_t* data, const uint32_t* length,
                    uint16_t* resultCode) {
    const device::Reservation reservation = device::acquireDevice(printer, resultCode);
    if (!reservation) return false;
    const auto* setting = std::find_if(std::begin(settings), std::end(settings),
                                       [&](const Setting& candidate) { return candidate.tag == tag; });
    if (setting == std::end(settings) || data == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    if (!setting->hasLength) return setting->apply(printer, {data, 0}, resultCode);
    if (length == nullptr) return device::fail(ZPRUSB_BAD_ARGUMENT, resultCode);
    return setting->apply(printer, {data, *length}, resultCode);
}

}  // namespace printer
