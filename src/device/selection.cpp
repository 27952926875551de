#include "device/selection.h"

#include <algorithm>

namespace device {

namespace {

/// The lowest index with this identity among those that the object probes, whether or not it is open.
template <class Identity>
uint8_t findIndex(const PrinterObject& printer, Identity DeviceEntry::*field, const Identity& wanted)
    REQUIRES(apiLock) {
    for (uint32_t index = 0; index < printer.scanLimit; ++index) {
        if (deviceTable[index].*field == wanted) return static_cast<uint8_t>(index);
    }
    return noDeviceIndex;
}

/// Not before a search has found out about it.
bool isSelectable(uint32_t index) REQUIRES(apiLock) {
    const DeviceEntry* entry = openEntry(index);
    return entry != nullptr && !entry->isNew;
}

}  // namespace

void usePrinter(PrinterObject& printer, uint8_t index) {
    printer.deviceIndex = index;
    printer.connection.writer.pipe = deviceTable[index].writePipe;
    printer.connection.reader.pipe = deviceTable[index].readPipe;
}

Result selectByIndex(PrinterObject& printer, uint8_t index) {
    const bool asks = index == noDeviceIndex;
    if (!isSelectable(asks ? printer.deviceIndex.load() : index)) return failure(ZPRUSB_NOT_SELECTABLE);
    if (asks) return done;
    printer.page.printOption20 = 1;
    usePrinter(printer, index);
    return done;
}

Result selectByLabel(PrinterObject& printer, const char* label) {
    if (label == nullptr) return openEntry(printer.deviceIndex) != nullptr ? done : failure(ZPRUSB_NO_PRINTER);
    PrinterLabel wanted;
    std::copy_n(label, wanted.size(), wanted.begin());
    const uint8_t index = findIndex(printer, &DeviceEntry::printerLabel, wanted);
    if (!isSelectable(index)) return failure(ZPRUSB_NOT_SELECTABLE);
    usePrinter(printer, index);
    printer.selectedPrinterLabel = wanted;
    return done;
}

Result selectById(PrinterObject& printer, const PrinterId& id) {
    const bool asks = id == filledPrinterId(0xFF);
    const uint8_t index = asks ? printer.deviceIndex.load() : findIndex(printer, &DeviceEntry::printerId, id);
    if (asks && index < deviceCount) printer.selectedPrinterId = deviceTable[index].printerId;
    if (!isSelectable(index)) return failure(ZPRUSB_NOT_SELECTABLE);
    if (asks) return done;
    usePrinter(printer, index);
    printer.selectedPrinterId = id;
    return done;
}

}  // namespace device
