/// Entry points that list and select printers.
#include <cstring>

#include "api/entry_frame.h"
#include "api/internal.h"
#include "api/object_lifecycle.h"
#include "api/object_table.h"
#include "api/printer_list.h"
#include "device/device_table.h"
#include "device/selection.h"

using api::LockedEntryGuard;
using api::ObjectUse;
using device::DeviceEntry;
using device::PrinterObject;
using device::Result;

namespace {

/// Lists one identity of each printer, behind one another. A full table of 128 printers counts as none.
template <class Identity>
uint32_t listIdentities(Identity DeviceEntry::*field, void* identities, int filler) {
    if (identities == nullptr) return 0;
    const LockedEntryGuard guard;
    api::waitForFirstSearch();
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
template <class Select>
void selectOnBoundPrinter(uint16_t* resultCode, const Select& select) {
    const LockedEntryGuard guard;
    const ObjectUse object(api::bindThreadSlot());
    api::report(object ? select(*object) : device::failure(ZPRUSB_NO_OBJECT), resultCode);
}

}  // namespace

uint32_t zprusb_listupPrinter(uint8_t* list) {
    if (list == nullptr) return 0;
    const LockedEntryGuard guard;
    api::waitForFirstSearch();
    return api::listPrinters(list);
}

uint32_t zprusb_listupPrinterLbl(char* labels) {
    return listIdentities(&DeviceEntry::printerLabel, labels, 0);
}

uint32_t zprusb_listupPrinterId(uint8_t* ids) {
    return listIdentities(&DeviceEntry::printerId, ids, 0xFF);
}

uint32_t zprusb_selectPrinter(uint8_t printerNumber, uint16_t* resultCode) {
    uint32_t selected = device::noDeviceIndex;
    selectOnBoundPrinter(resultCode, [&](PrinterObject& printer) REQUIRES(device::apiLock) {
        const Result result = device::selectByIndex(printer, printerNumber);
        if (result) selected = printer.deviceIndex;
        return result;
    });
    return selected;
}

char* zprusb_selectPrinterLbl(const char* label, uint16_t* resultCode) {
    char* selected = nullptr;
    selectOnBoundPrinter(resultCode, [&](PrinterObject& printer) REQUIRES(device::apiLock) {
        const Result result = device::selectByLabel(printer, label);
        if (result || label != nullptr) selected = printer.selectedPrinterLabel.data();
        return result;
    });
    return selected;
}

uint8_t* zprusb_selectPrinterId(uint64_t printerId, uint16_t* resultCode) {
    device::PrinterId id;
    std::memcpy(id.data(), &printerId, id.size());
    uint8_t* selected = nullptr;
    selectOnBoundPrinter(resultCode, [&](PrinterObject& printer) REQUIRES(device::apiLock) {
        selected = printer.selectedPrinterId.data();
        return device::selectById(printer, id);
    });
    return selected;
}
