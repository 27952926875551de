#include "device/enumeration.h"

#include <string_view>

#include "device/api_lock.h"

namespace device {

namespace {

constexpr uint32_t waitMilliseconds = 100;  // between two looks at whether a new device is still there

constinit uint32_t openings GUARDED_BY(apiLock) = 0;  // of all devices

/// Where a device's interface path, such as \\?\usb#vid_5a2c&pid_0012#…, carries what is looked at.
constexpr size_t nameCapacity = 1024;
constexpr size_t prefixLength = 4;  // left out of the mutex name
constexpr size_t vendorOffset = 12;
constexpr size_t productOffset = 21;

struct DeviceName {
    char text[nameCapacity] = {};
    std::string_view view() const { return text; }
};

bool readName(const ControlLibrary& control, DeviceHandle handle, DeviceName& name) {
    const bool read = control.getDeviceName(handle, name.text) == 1;
    name.text[nameCapacity - 1] = '\0';
    return read;
}

/// The model of the device that has this name, or null when it is no printer.
const Model* findModel(const DeviceName& name) {
    const auto isAt = [&](size_t offset, std::string_view digits) {
        return name.view().size() >= offset && name.view().substr(offset).starts_with(digits);
    };
    for (const Model& model : models) {
        if (isAt(vendorOffset, model.vendorDigits) && isAt(productOffset, model.productDigits)) return &model;
    }
    return nullptr;
}

platform::NamedMutex* openMutexOf(const DeviceName& name) {
    const size_t start = name.view().size() < prefixLength ? name.view().size() : prefixLength;
    return platform::openNamedMutex(name.text + start);
}

bool openPipes(DeviceEntry& entry, const Model& model) REQUIRES(apiLock) {
    entry.readPipe = entry.control->getPipeHandle(entry.handle, 0, model.readPipe, 0);
    entry.writePipe = entry.control->getPipeHandle(entry.handle, 0, model.writePipe, 0);
    return entry.readPipe != platform::noPipe && entry.writePipe != platform::noPipe;
}

/// Devices that are gone left their pipes in the entries. They are closed before anything is opened, which may
/// be given the same numbers.
void closePipesOfLostDevices() REQUIRES(apiLock) {
    for (DeviceEntry& entry : deviceTable) {
        if (entry.handle != noDevice && entry.control->checkDevice(entry.handle) != 0) continue;
        closeReadPipe(entry);
        closeWritePipe(entry);
    }
}

/// A device that is open already is not looked at again; its mutex is opened anew.
bool refreshOpenDevice(DeviceEntry& entry, const ControlLibrary& control, DeviceHandle handle)
    REQUIRES(apiLock) {
    DeviceName name;
    const bool named = readName(control, handle, name);
    if (named) replaceEntryMutex(entry, openMutexOf(name));
    entry.control = &control;
    entry.handle = handle;
    return named;
}

void enterNewDevice(DeviceEntry& entry, const ControlLibrary& control, DeviceHandle handle,
                    const DeviceName& name) REQUIRES(apiLock) {
    entry.control = &control;
    entry.opening = ++openings;
    replaceEntryMutex(entry, openMutexOf(name));
    entry.isNew = true;
    entry.handle = handle;  // last: an entry with a device has its mutex
}

/// Waits for a new device's mutex, a while at a time. A thread of this process that holds it is not waited for:
/// it keeps other processes away just as well, and may itself be waiting for this search.
/// @return whether the wait is over.
bool waitAWhile(platform::NamedMutex* mutex, bool& obtained) {
    using platform::MutexWait;
    MutexWait wait = platform::waitForNamedMutex(mutex, 0);
    if (wait == MutexWait::timedOut) {
        if (platform::isOwnedByThisProcess(mutex)) return true;
        platform::releaseClosedMutexes();  // the other process may be waiting for one of those
        const AwayFromApiLock away(AwayFromApiLock::Admitted::everybody);
        wait = platform::waitForNamedMutex(mutex, waitMilliseconds);
    }
    obtained = wait == MutexWait::obtained || wait == MutexWait::abandoned;
    return wait != MutexWait::timedOut;
}

/// Opens the pipes of a device that has just been opened, if it is a printer.
bool openIfPrinter(DeviceEntry& entry, const DeviceName& name) REQUIRES(apiLock) {
    const Model* model = findModel(name);
    entry.model = model;
    return model != nullptr && openPipes(entry, *model);
}

/// Finds out about a new device, and holds its mutex while it does. During the wait another search may be
/// faster, and the device may be closed.
/// @return whether it is an open printer now.
bool setUpNewDevice(DeviceEntry& entry, const DeviceName& name) REQUIRES(apiLock) {
    const uint32_t opening = entry.opening;
    platform::NamedMutex* mutex = shareEntryMutex(entry);
    bool obtained = false;
    while (entry.isNew && entry.opening == opening && !waitAWhile(mutex, obtained)) continue;
    const bool stillThere = entry.opening == opening && entry.handle != noDevice;
    const bool isOurs = stillThere && entry.isNew;
    const bool found = isOurs ? openIfPrinter(entry, name) : stillThere;
    if (isOurs) entry.isNew = false;
    if (obtained) platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    if (isOurs && !found) closeDevice(entry);
    return found;
}

/// @return the printer's handle, or `noDevice` when there is no printer of that number.
DeviceHandle probe(PrinterObject& printer, uint32_t deviceNumber, uint16_t& openedCount) REQUIRES(apiLock) {
    const ControlLibrary& control = *printer.control;
    DeviceHandle handle = control.checkDeviceName(deviceNumber);
    const bool wasOpen = handle != noDevice;
    if (!wasOpen) handle = control.open(deviceNumber);
    if (handle == noDevice) return noDevice;
    if (!wasOpen) printer.openedCount = ++openedCount;
    if (handle >= deviceCount) {
        control.close(handle);
        return noDevice;
    }
    DeviceEntry& entry = deviceTable[handle];
    if (wasOpen && !entry.isNew) return refreshOpenDevice(entry, control, handle) ? handle : noDevice;
    DeviceName name;
    readName(control, handle, name);
    if (!wasOpen) enterNewDevice(entry, control, handle, name);  // otherwise another search waits for it
    return setUpNewDevice(entry, name) ? handle : noDevice;
}

}  // namespace

uint32_t enumeratePrinters(PrinterObject& printer, uint8_t* list) {
    if (printer.control == nullptr) return 0;
    closePipesOfLostDevices();
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
    if (printer.connection.writer.pipe != entry->writePipe) printer.connection.writer.pipe = platform::noPipe;
    if (printer.connection.reader.pipe != entry->readPipe) printer.connection.reader.pipe = platform::noPipe;
}

}  // namespace device
