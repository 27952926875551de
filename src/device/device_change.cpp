#include "device/device_change.h"

namespace device {

namespace {

bool isGone(const DeviceEntry& entry) REQUIRES(apiLock) {
    return entry.control->checkDevice(entry.handle) == 0;
}

/// Several objects may have copies of one pipe handle: the pipe is closed once, with the entry's, and the other
/// copies are only cleared.
void dropPipe(std::atomic<platform::PipeHandle>& copy, DeviceEntry& entry,
              platform::PipeHandle DeviceEntry::*pipe, void (*close)(DeviceEntry& entry)) {
    if (copy.exchange(platform::noPipe) == entry.*pipe) close(entry);
}

}  // namespace

void checkSelectedDevice(PrinterObject& printer) {
    DeviceEntry* entry = openEntry(printer.deviceIndex);
    if (entry == nullptr || !isGone(*entry)) return;
    dropPipe(printer.connection.writer.pipe, *entry, &DeviceEntry::writePipe, closeWritePipe);
    dropPipe(printer.connection.reader.pipe, *entry, &DeviceEntry::readPipe, closeReadPipe);
    printer.deviceIndex = noDeviceIndex;
}

void sweepDevices(const PrinterObject& printer) {
    for (uint32_t index = 0; index < printer.scanLimit; ++index) {
        DeviceEntry* entry = openEntry(index);
        if (entry != nullptr && isGone(*entry)) closeDevice(*entry);
    }
}

}  // namespace device
