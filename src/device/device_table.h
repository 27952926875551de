/// The devices that the process has open, one entry for each handle of the control library.
#pragma once

#include "device/api_lock.h"
#include "device/model.h"
#include "device/printer_object.h"

namespace device {

/// What the entry points without the API lock read is atomic or guarded by `deviceTableLock`. All zero until
/// the first opening resets the table, before which nothing looks at it: so the table takes no room in the
/// library's file.
struct DeviceEntry {
    std::atomic<DeviceHandle> handle{0};
    platform::NamedMutex* mutex GUARDED_BY(deviceTableLock) = nullptr;
    std::atomic<const Model*> model{nullptr};                     // once it is known to be a printer
    const ControlLibrary* control GUARDED_BY(apiLock) = nullptr;  // the one that opened it
    PrinterId printerId GUARDED_BY(apiLock){};
    PrinterLabel printerLabel GUARDED_BY(apiLock){};
    std::atomic<uint32_t> opening{0};  // no other opening of a device has this number; stays when it is closed
    // Opened, but a search has not yet found out whether it is a printer.
    bool isNew GUARDED_BY(apiLock) = false;
    platform::PipeHandle writePipe GUARDED_BY(apiLock) = 0;
    platform::PipeHandle readPipe GUARDED_BY(apiLock) = 0;
};

inline constinit std::array<DeviceEntry, deviceCount> deviceTable{};

/// Whether the table is filled.
inline constinit bool deviceTableReady GUARDED_BY(apiLock) = false;

/// Goes up when all devices are closed: a search that was waiting meanwhile has nothing left to fill.
inline constinit uint32_t deviceTableGeneration GUARDED_BY(apiLock) = 0;

/// The entry of an index, or null if there is none or no device is open in it.
DeviceEntry* openEntry(uint32_t index);

/// The model of the printer that the object has selected. The caller has reserved the printer.
const Model& modelOf(const PrinterObject& printer);

/// Empties the table and gives every entry an identifier of this byte. The devices are not closed.
void resetDeviceTable(uint8_t idByte) REQUIRES(apiLock);

/// In the child of a fork: leaves the table to be reset by the first opening. What is open in it is the
/// parent's.
void resetDeviceTableInChild() REQUIRES(apiLock);

/// A use of the entry's mutex of the caller's own, to be closed by it; null when the entry has none.
platform::NamedMutex* shareEntryMutex(DeviceEntry& entry);

/// Gives the entry another mutex (or null) and closes the former one.
void replaceEntryMutex(DeviceEntry& entry, platform::NamedMutex* mutex);

/// Each closes one of an entry's pipes, unless workers of that direction were ended by force.
void closeWritePipe(DeviceEntry& entry) REQUIRES(apiLock);
void closeReadPipe(DeviceEntry& entry) REQUIRES(apiLock);

/// Closes the device of an entry and empties the entry, but for its pipes.
void closeDevice(DeviceEntry& entry) REQUIRES(apiLock);

/// The two halves of an object's teardown: first all printers are released, then all devices closed.
void releaseAllDeviceMutexes(PrinterObject& printer) REQUIRES(apiLock);
void closeAllDevices(PrinterObject& printer) REQUIRES(apiLock);

}  // namespace device
