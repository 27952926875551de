#include "device/device_table.h"

#include <utility>

#include "platform/fork.h"

namespace device {

namespace {

void clearIdentity(DeviceEntry& entry) {
    entry.printerId = {};
    entry.printerLabel = {};
}

/// Gives up the calling thread's hold of the entry's mutex, if it has one, and the mutex with it.
void dropEntryMutex(DeviceEntry& entry) {
    platform::releaseNamedMutex(entry.mutex);
    replaceEntryMutex(entry, nullptr);
}

void releasePageMutex(PrinterObject& printer) {
    platform::NamedMutex* mutex = nullptr;
    {
        HoldingTable lock(deviceTableLock);
        std::swap(mutex, printer.pageMutex);
    }
    platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
}

}  // namespace

DeviceEntry* openEntry(uint32_t index) {
    if (index >= deviceCount || deviceTable[index].handle == noDevice) return nullptr;
    return &deviceTable[index];
}

void resetDeviceTable(uint8_t idByte) {
    for (DeviceEntry& entry : deviceTable) {
        entry.handle = noDevice;
        entry.isNew = false;
        replaceEntryMutex(entry, nullptr);
        entry.vendorProduct = 0;
        entry.printerId = filledPrinterId(idByte);
        entry.printerLabel = {};
        entry.writePipe = platform::noPipe;
        entry.readPipe = platform::noPipe;
    }
}

void resetDeviceTableInChild() {
    platform::startAnew(deviceTableLock);
    deviceTableReady = false;
}

platform::NamedMutex* shareEntryMutex(DeviceEntry& entry) {
    HoldingTable lock(deviceTableLock);
    return platform::shareNamedMutex(entry.mutex);
}

void replaceEntryMutex(DeviceEntry& entry, platform::NamedMutex* mutex) {
    {
        HoldingTable lock(deviceTableLock);
        std::swap(entry.mutex, mutex);
    }
    platform::closeNamedMutex(mutex);
}

void closeEntryPipe(const UsbControlLibrary& control, platform::PipeHandle& pipe, bool abandoned) {
    if (pipe == platform::noPipe) return;
    if (!abandoned && control.loaded) control.closePipe(pipe);
    pipe = platform::noPipe;
}

void closeEntryDevice(const UsbControlLibrary& control, DeviceEntry& entry) {
    if (control.loaded) control.close(entry.handle);
    entry.handle = noDevice;
    entry.isNew = false;
    entry.vendorProduct = 0;
    clearIdentity(entry);
    dropEntryMutex(entry);
}

void releaseAllDeviceMutexes(PrinterObject& printer) {
    for (DeviceEntry& entry : deviceTable) {
        if (entry.mutex == nullptr) continue;
        dropEntryMutex(entry);
        clearIdentity(entry);
    }
    releasePageMutex(printer);
}

void closeAllDevices(PrinterObject& printer) {
    for (DeviceEntry& entry : deviceTable) {
        if (entry.handle != noDevice) closeEntryDevice(printer.control, entry);
        closeEntryPipe(printer.control, entry.writePipe, writePipeAbandoned);
        closeEntryPipe(printer.control, entry.readPipe, readPipeAbandoned);
    }
    // The object's copies of the handles must not outlive the pipes: their numbers may be given out anew.
    printer.writer.pipe = platform::noPipe;
    printer.reader.pipe = platform::noPipe;
    deviceTableReady = false;
    ++deviceTableGeneration;
    printer.opened = false;
}

}  // namespace device
