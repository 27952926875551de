#include "device/device_table.h"

#include <utility>

#include "platform/fork.h"

namespace device {

namespace {

/// Ends the calling thread's hold of the mutex, if it has one, and a use.
void releaseAndClose(platform::NamedMutex* mutex) {
    platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
}

platform::NamedMutex* exchangeEntryMutex(DeviceEntry& entry, platform::NamedMutex* mutex) {
    const HoldingTable lock(deviceTableLock);
    return std::exchange(entry.mutex, mutex);
}

platform::NamedMutex* takePageMutex(PrinterObject& printer) {
    const HoldingTable lock(deviceTableLock);
    return std::exchange(printer.pageMutex, nullptr);
}

/// Leaves the entry its pipes.
void emptyEntry(DeviceEntry& entry, uint8_t idByte) REQUIRES(apiLock) {
    entry.handle = noDevice;
    entry.isNew = false;
    entry.model = nullptr;
    entry.printerId = filledPrinterId(idByte);
    entry.printerLabel = {};
    releaseAndClose(exchangeEntryMutex(entry, nullptr));
}

void closePipe(const DeviceEntry& entry, platform::PipeHandle& pipe, bool abandoned) REQUIRES(apiLock) {
    if (pipe != platform::noPipe && !abandoned) entry.control->closePipe(pipe);
    pipe = platform::noPipe;
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
        emptyEntry(entry, idByte);
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
    platform::closeNamedMutex(exchangeEntryMutex(entry, mutex));
}

void closeWritePipe(DeviceEntry& entry) {
    closePipe(entry, entry.writePipe, writePipeAbandoned);
}

void closeReadPipe(DeviceEntry& entry) {
    closePipe(entry, entry.readPipe, readPipeAbandoned);
}

void closeDevice(DeviceEntry& entry) {
    entry.control->close(entry.handle);
    emptyEntry(entry, 0x00);
}

void releaseAllDeviceMutexes(PrinterObject& printer) {
    for (DeviceEntry& entry : deviceTable) releaseAndClose(exchangeEntryMutex(entry, nullptr));
    // Whichever thread has the page, its printer is about to be closed.
    platform::NamedMutex* kept = takePageMutex(printer);
    platform::revokeNamedMutex(kept);
    platform::closeNamedMutex(kept);
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
