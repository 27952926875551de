#include "device/selection.h"

#include <algorithm>

namespace device {

namespace {

/// The lowest index with this identity among those that the object probes, whether or not it is open.
template <class Identity>
uint8_t findIndex(const PrinterObject& printer, Identity DeviceEntry::*field, const Identity& wanted) {
    for (uint32_t index = 0; index < printer.scanLimit; ++index) {
        if (deviceTable[index].*field == wanted) return static_cast<uint8_t>(index);
    }
    return noDeviceIndex;
}

}  // namespace

void usePrinter(PrinterObject& printer, uint8_t index) {
    printer.deviceIndex = index;
    printer.writer.pipe = deviceTable[index].writePipe;
    printer.reader.pipe = deviceTable[index].readPipe;
}

uint8_t selectByNumber(PrinterObject& printer, uint8_t number, uint16_t* resultCode) {
    setResult(resultCode, ZPRUSB_NOT_SELECTABLE);
    if (number == noDeviceIndex) {
        if (openEntry(printer.deviceIndex) == nullptr) return noDeviceIndex;
    } else {
        if (openEntry(number) == nullptr) return noDeviceIndex;
        printer.page.printOption20 = 1;
        usePrinter(printer, number);
    }
    setResult(resultCode, ZPRUSB_SUCCESS);
    return printer.deviceIndex;
}

char* selectByLabel(PrinterObject& printer, const char* label, uint16_t* resultCode) {
    setResult(resultCode, ZPRUSB_NOT_SELECTABLE);
    char* selected = printer.selectedPrinterLabel.data();
    if (label == nullptr) {
        const bool present = openEntry(printer.deviceIndex) != nullptr;
        setResult(resultCode, present ? ZPRUSB_SUCCESS : ZPRUSB_NO_PRINTER);
        return present ? selected : nullptr;
    }
    PrinterLabel wanted;
    std::copy_n(label, wanted.size(), wanted.begin());
    const uint8_t index = findIndex(printer, &DeviceEntry::printerLabel, wanted);
    if (openEntry(index) == nullptr) return selected;
    usePrinter(printer, index);
    printer.selectedPrinterLabel = wanted;
    setResult(resultCode, ZPRUSB_SUCCESS);
    return selected;
}

uint8_t* selectById(PrinterObject& printer, const PrinterId& id, uint16_t* resultCode) {
    setResult(resultCode, ZPRUSB_NOT_SELECTABLE);
    uint8_t* selected = printer.selectedPrinterId.data();
    if (id == filledPrinterId(0xFF)) {
        const uint8_t asked = printer.deviceIndex;
        if (asked >= deviceCount) return selected;
        printer.selectedPrinterId = deviceTable[asked].printerId;
        if (openEntry(asked) != nullptr) setResult(resultCode, ZPRUSB_SUCCESS);
        return selected;
    }
    const uint8_t index = findIndex(printer, &DeviceEntry::printerId, id);
    if (openEntry(index) == nullptr) return selected;
    usePrinter(printer, index);
    printer.selectedPrinterId = id;
    setResult(resultCode, ZPRUSB_SUCCESS);
    return selected;
}

}  // namespace device
