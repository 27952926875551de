#include "device/enumeration.h"

#include <string_view>

#include "platform/thread.h"

namespace device {

namespace {

/// Where a device's interface path, such as \\?\usb#vid_5a2c&pid_0012#…, carries what is looked at.
constexpr size_t nameCapacity = 1024;
constexpr size_t prefixLength = 4;  // left out of the mutex name
constexpr size_t vendorOffset = 12;
constexpr size_t productOffset = 21;
constexpr std::string_view vendorDigits = "5a2c";
constexpr std::string_view productDigits = "0012";

/// The printers that the library supports, and the numbers of their pipes.
struct PipeIds {
    uint32_t vendorProduct;
    uint8_t readPipe;
    uint8_t writePipe;
};
constexpr uint32_t supportedPrinter = 0x5A2C0012;
constexpr PipeIds pipeIdMap[] = {{supportedPrinter, 1, 0}};

struct DeviceName {
    char text[nameCapacity] = {};
    std::string_view view() const { return text; }
};

bool readName(const UsbControlLibrary& control, DeviceHandle handle, DeviceName& name) {
    const bool read = control.getDeviceName(handle, name.text) == 1;
    name.text[nameCapacity - 1] = '\0';
    return read;
}

bool isPrinter(const DeviceName& name) {
    const std::string_view path = name.view();
    return path.size() >= productOffset + productDigits.size() &&
           path.substr(vendorOffset, vendorDigits.size()) == vendorDigits &&
           path.substr(productOffset, productDigits.size()) == productDigits;
}

platform::NamedMutex* openMutexOf(const DeviceName& name) {
    const size_t start = name.view().size() < prefixLength ? name.view().size() : prefixLength;
    return platform::openNamedMutex(name.text + start);
}

bool openPipes(const UsbControlLibrary& control, DeviceEntry& entry) {
    for (const PipeIds& ids : pipeIdMap) {
        if (ids.vendorProduct != entry.vendorProduct) continue;
        // A device that was swept away left its pipes in the entry.
        closeEntryPipe(control, entry.readPipe, readPipeAbandoned);
        closeEntryPipe(control, entry.writePipe, writePipeAbandoned);
        entry.readPipe = control.getPipeHandle(entry.handle, 0, ids.readPipe, 0);
        entry.writePipe = control.getPipeHandle(entry.handle, 0, ids.writePipe, 0);
        return entry.readPipe != platform::noPipe && entry.writePipe != platform::noPipe;
    }
    return false;
}

/// A device that is open already is not looked at again; its mutex is opened anew.
bool refreshOpenDevice(const UsbControlLibrary& control, DeviceHandle handle) {
    DeviceEntry& entry = deviceTable[handle];
    entry.handle = handle;
    DeviceName name;
    if (!readName(control, handle, name)) return false;
    replaceEntryMutex(entry, openMutexOf(name));
    return true;
}

/// Opens the pipes of a device that has just been opened, if it is a printer. While it does, it holds the
/// device's mutex.
bool setUpNewDevice(PrinterObject& printer, DeviceHandle handle) {
    DeviceEntry& entry = deviceTable[handle];
    entry.handle = handle;
    DeviceName name;
    readName(printer.control, handle, name);
    replaceEntryMutex(entry, openMutexOf(name));
    platform::waitForNamedMutex(entry.mutex, platform::forever);
    bool found = false;
    if (isPrinter(name)) {
        entry.vendorProduct = supportedPrinter;
        found = openPipes(printer.control, entry);
    }
    platform::releaseNamedMutex(entry.mutex);
    return found;
}

void discardDevice(const UsbControlLibrary& control, DeviceHandle handle) {
    DeviceEntry& entry = deviceTable[handle];
    replaceEntryMutex(entry, nullptr);
    entry.handle = noDevice;
    control.close(handle);
    entry.vendorProduct = 0;
}

/// @return the printer's handle, or `noDevice` when there is no printer of that number.
DeviceHandle probe(PrinterObject& printer, uint32_t deviceNumber, uint16_t& openedCount) {
    const UsbControlLibrary& control = printer.control;
    DeviceHandle handle = control.checkDeviceName(deviceNumber);
    const bool wasOpen = handle != noDevice;
    if (!wasOpen) handle = control.open(deviceNumber);
    if (handle == noDevice) return noDevice;
    if (!wasOpen) printer.openedCount = ++openedCount;
    if (handle >= deviceCount) {
        control.close(handle);
        return noDevice;
    }
    if (wasOpen) return refreshOpenDevice(control, handle) ? handle : noDevice;
    if (setUpNewDevice(printer, handle)) return handle;
    discardDevice(control, handle);
    return noDevice;
}

}  // namespace

uint32_t enumeratePrinters(PrinterObject& printer, uint8_t* list) {
    if (!printer.control.loaded) return 0;
    uint32_t found = 0;
    uint16_t openedCount = 0;
    for (uint32_t deviceNumber = 0; deviceNumber < printer.scanLimit; ++deviceNumber) {
        const DeviceHandle handle = probe(printer, deviceNumber, openedCount);
        if (handle != noDevice) list[found++] = static_cast<uint8_t>(handle);
    }
    return found;
}

}  // namespace device
