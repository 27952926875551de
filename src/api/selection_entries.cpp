/// Entry points that list and select printers.
#include <cstring>

#include "api/entry_guard.h"
#include "api/internal.h"
#include "api/object_table.h"
#include "api/printer_list.h"
#include "device/device_table.h"
#include "device/selection.h"

using api::EntryGuard;
using api::ObjectUse;
using device::DeviceEntry;
using device::PrinterObject;

namespace {

/// Lists one identity of each printer, behind one another. A full table of 128 printers counts as none.
template <class Identity>
uint32_t listIdentities(Identity DeviceEntry::*field, void* identities, int filler) {
    if (identities == nullptr) return 0;
    const EntryGuard guard;
    auto* next = static_cast<char*>(std::memset(identities, filler, sizeof(Identity) * device::deviceCount));
    uint8_t list[device::deviceCount];
    const uint32_t found = api::listPrinters(list);
    if (found >= device::deviceCount) return 0;
    for (uint32_t i = 0; i < found; ++i) {
        std::memcpy(next, &(device::deviceTable[list[i]].*field), sizeof(Identity));
        next += sizeof(Identity);
    }
    return found;
}

/// The frame of the selections, which bind the calling thread.
template <class Result, class Select>
Result onBoundPrinter(Result withoutObject, uint16_t* resultCode, Select select) {
    device::setResult(resultCode, ZPRUSB_NO_OBJECT);
    const EntryGuard guard;
    const ObjectUse object(api::bindThreadSlot());
    return object ? select(*object) : withoutObject;
}

}  // namespace

uint32_t zprusb_listupPrinter(uint8_t* list) {
    if (list == nullptr) return 0;
    const EntryGuard guard;
    return api::listPrinters(list);
}

uint32_t zprusb_listupPrinterLbl(char* labels) {
    return listIdentities(&DeviceEntry::printerLabel, labels, 0);
}

uint32_t zprusb_listupPrinterId(uint8_t* ids) {
    return listIdentities(&DeviceEntry::printerId, ids, 0xFF);
}

uint32_t zprusb_selectPrinter(uint8_t printerNumber, uint16_t* resultCode) {
    return onBoundPrinter(uint32_t{device::noDeviceIndex}, resultCode, [&](PrinterObject& printer) {
        return uint32_t{device::selectByNumber(printer, printerNumber, resultCode)};
    });
}

char* zprusb_selectPrinterLbl(const char* label, uint16_t* resultCode) {
    return onBoundPrinter<char*>(nullptr, resultCode, [&](PrinterObject& printer) {
        return device::selectByLabel(printer, label, resultCode);
    });
}

uint8_t* zprusb_selectPrinterId(uint64_t printerId, uint16_t* resultCode) {
    device::PrinterId id;
    std::memcpy(id.data(), &printerId, id.size());
    return onBoundPrinter<uint8_t*>(nullptr, resultCode, [&](PrinterObject& printer) {
        return device::selectById(printer, id, resultCode);
    });
}
