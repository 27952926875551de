/// The devices that the process has open, one entry for each handle of the control library.
#pragma once

#include "device/model.h"
#include "device/printer_object.h"
#include "platform/lock.h"

namespace device {

/// Guarded by the API lock, but for what the entry points without that lock read: that is atomic or guarded by
/// `deviceTableLock`. All zero until the first opening resets the table, before which nothing looks at it: so
/// the table takes no room in the library's file.
struct DeviceEntry {
    std::atomic<DeviceHandle> handle{0};
    platform::NamedMutex* mutex = nullptr;     // guarded by deviceTableLock for writing and for others' reading
    std::atomic<const Model*> model{nullptr};  // once it is known to be a printer
    const ControlLibrary* control = nullptr;   // the one that opened it
    PrinterId printerId{};
    PrinterLabel printerLabel{};
    uint32_t opening = 0;  // no other opening of a device has this number; stays when the device is closed
    bool isNew = false;    // opened, but a search has not yet found out whether it is a printer
    platform::PipeHandle writePipe = 0;
    platform::PipeHandle readPipe = 0;
};

inline constinit std::array<DeviceEntry, deviceCount> deviceTable{};

/// A leaf: nothing is waited for while it is held. Also guards every object's `pageMutex` and `pageOpening`.
inline constinit platform::Lock deviceTableLock;
using HoldingTable = platform::Holding<platform::Lock>;

/// Whether the table is filled; guarded by the API lock.
inline constinit bool deviceTableReady = false;

/// Goes up when all devices are closed: a search that was waiting meanwhile has nothing left to fill. Guarded
/// by the API lock.
inline constinit uint32_t deviceTableGeneration = 0;

/// The entry of an index, or null if there is none or no device is open in it.
DeviceEntry* openEntry(uint32_t index);

/// The model of the printer that the object has selected. The caller has reserved the printer.
const Model& modelOf(const PrinterObject& printer);

/// Empties the table and gives every entry an identifier of this byte. The devices are not closed.
void resetDeviceTable(uint8_t idByte);

/// In the child of a fork: leaves the table to be reset by the first opening. What is open in it is the
/// parent's.
void resetDeviceTableInChild();

/// A use of the entry's mutex of the caller's own, to be closed by it; null when the entry has none.
platform::NamedMutex* shareEntryMutex(DeviceEntry& entry);

/// Gives the entry another mutex (or null) and closes the former one.
void replaceEntryMutex(DeviceEntry& entry, platform::NamedMutex* mutex);

/// Each closes one of an entry's pipes, unless workers of that direction were ended by force.
void closeWritePipe(DeviceEntry& entry);
void closeReadPipe(DeviceEntry& entry);

/// Closes the device of an entry and empties the entry, but for its pipes.
void closeDevice(DeviceEntry& entry);

/// The two halves of an object's teardown: first all printers are given free, then all devices closed.
void releaseAllDeviceMutexes(PrinterObject& printer);
void closeAllDevices(PrinterObject& printer);

}  // namespace device
