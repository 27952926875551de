#include "device/enumeration.h"

#include <string_view>

#include "device/api_lock.h"

namespace device {

namespace {

constexpr uint32_t waitMilliseconds = 100;  // between two looks at whether a new device is still there

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

/// Waits for a new device's mutex, a while at a time. A thread of this process that holds it is not waited for:
/// it keeps other processes away just as well, and may itself be waiting for this search.
/// @return whether the wait is over.
bool waitAWhile(platform::NamedMutex* mutex, bool& obtained) {
    using platform::MutexWait;
    MutexWait wait = platform::waitForNamedMutex(mutex, 0);
    if (wait == MutexWait::timedOut) {
        if (platform::isOwnedByThisProcess(mutex)) return true;
        const AwayFromApiLock away(AwayFromApiLock::Admitted::everybody);
        wait = platform::waitForNamedMutex(mutex, waitMilliseconds);
    }
    obtained = wait == MutexWait::obtained || wait == MutexWait::abandoned;
    return wait != MutexWait::timedOut;
}

/// Opens the pipes of a device that has just been opened, if it is a printer.
bool openIfPrinter(const UsbControlLibrary& control, DeviceEntry& entry, const DeviceName& name) {
    if (!isPrinter(name)) return false;
    entry.vendorProduct = supportedPrinter;
    return openPipes(control, entry);
}

void discardDevice(const UsbControlLibrary& control, DeviceEntry& entry) {
    replaceEntryMutex(entry, nullptr);
    const DeviceHandle handle = entry.handle.exchange(noDevice);
    control.close(handle);
    entry.vendorProduct = 0;
}

/// Finds out about a new device, and holds its mutex while it does. During the wait another search may be
/// faster, and the device may be closed.
/// @return whether it is an open printer now.
bool setUpNewDevice(const UsbControlLibrary& control, DeviceEntry& entry, const DeviceName& name) {
    const uint32_t generation = deviceTableGeneration;
    platform::NamedMutex* mutex = shareEntryMutex(entry);
    bool obtained = false;
    while (entry.isNew && generation == deviceTableGeneration && !waitAWhile(mutex, obtained)) continue;
    const bool stillThere = generation == deviceTableGeneration && entry.handle != noDevice;
    const bool isOurs = stillThere && entry.isNew;
    const bool found = isOurs ? openIfPrinter(control, entry, name) : stillThere;
    if (isOurs) entry.isNew = false;
    if (obtained) platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    if (isOurs && !found) discardDevice(control, entry);
    return found;
}

/// Enters a device that has just been opened, or that another search has opened and is waiting for.
DeviceEntry& enterNewDevice(const UsbControlLibrary& control, DeviceHandle handle, DeviceName& name) {
    DeviceEntry& entry = deviceTable[handle];
    entry.handle = handle;
    readName(control, handle, name);
    if (!entry.isNew) replaceEntryMutex(entry, openMutexOf(name));
    entry.isNew = true;
    return entry;
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
    if (wasOpen && !deviceTable[handle].isNew) return refreshOpenDevice(control, handle) ? handle : noDevice;
    DeviceName name;
    return setUpNewDevice(control, enterNewDevice(control, handle, name), name) ? handle : noDevice;
}

}  // namespace

uint32_t enumeratePrinters(PrinterObject& printer, uint8_t* list) {
    if (!printer.control.loaded) return 0;
    const uint32_t generation = deviceTableGeneration;
    uint32_t found = 0;
    uint16_t openedCount = 0;
    for (uint32_t deviceNumber = 0; deviceNumber < printer.scanLimit; ++deviceNumber) {
        const DeviceHandle handle = probe(printer, deviceNumber, openedCount);
        if (generation != deviceTableGeneration) return 0;
        if (handle != noDevice) list[found++] = static_cast<uint8_t>(handle);
    }
    return found;
}

void forgetStalePipes(PrinterObject& printer) {
    const DeviceEntry* entry = openEntry(printer.deviceIndex);
    if (entry == nullptr) return;
    if (printer.writer.pipe != entry->writePipe) printer.writer.pipe = platform::noPipe;
    if (printer.reader.pipe != entry->readPipe) printer.reader.pipe = platform::noPipe;
}

}  // namespace device
