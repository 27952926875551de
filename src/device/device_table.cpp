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

void closePipe(const DeviceEntry& entry, platform::PipeHandle& pipe, bool abandoned) {
    if (pipe != platform::noPipe && !abandoned) entry.control->closePipe(pipe);
    pipe = platform::noPipe;
}

/// Whichever thread has the page, its printer is about to be closed.
void revokePageMutex(PrinterObject& printer) {
    platform::NamedMutex* mutex = nullptr;
    {
        HoldingTable lock(deviceTableLock);
        std::swap(mutex, printer.pageMutex);
    }
    platform::revokeNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
}

}  // namespace

DeviceEntry* openEntry(uint32_t index) {
    if (index >= deviceCount || deviceTable[index].handle == noDevice) return nullptr;
    return &deviceTable[index];
}

const Model& modelOf(const PrinterObject& printer) {
    const DeviceEntry* entry = openEntry(printer.deviceIndex);
    const Model* model = entry != nullptr ? entry->model.load() : nullptr;
    return model != nullptr ? *model : models.front();  // a device that others opened is not looked at
}

void resetDeviceTable(uint8_t idByte) {
    for (DeviceEntry& entry : deviceTable) {
        entry.handle = noDevice;
        entry.isNew = false;
        replaceEntryMutex(entry, nullptr);
        entry.model = nullptr;
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

void closeWritePipe(DeviceEntry& entry) {
    closePipe(entry, entry.writePipe, writePipeAbandoned);
}

void closeReadPipe(DeviceEntry& entry) {
    closePipe(entry, entry.readPipe, readPipeAbandoned);
}

void closeDevice(DeviceEntry& entry) {
    entry.control->close(entry.handle);
    entry.handle = noDevice;
    entry.isNew = false;
    entry.model = nullptr;
    clearIdentity(entry);
    dropEntryMutex(entry);
}

void releaseAllDeviceMutexes(PrinterObject& printer) {
    for (DeviceEntry& entry : deviceTable) {
        if (entry.mutex == nullptr) continue;
        dropEntryMutex(entry);
        clearIdentity(entry);
    }
    revokePageMutex(printer);
}

void closeAllDevices(PrinterObject& printer) {
    for (DeviceEntry& entry : deviceTable) {
        if (entry.handle != noDevice) closeDevice(entry);
        closeWritePipe(entry);
        closeReadPipe(entry);
    }
    // The object's copies of the handles must not outlive the pipes: their numbers may be given out anew.
    printer.connection.writer.pipe = platform::noPipe;
    printer.connection.reader.pipe = platform::noPipe;
    deviceTableReady = false;
    ++deviceTableGeneration;
    printer.opened = false;
}

}  // namespace device
