#include "device/device_change.h"

namespace device {

namespace {

bool isGone(const UsbControlLibrary& control, const DeviceEntry& entry) {
    return control.loaded && control.checkDevice(entry.handle) == 0;
}

/// Several objects may have copies of one pipe handle: the pipe is closed once, with the entry's, and the other
/// copies are only cleared.
void closeObjectPipe(const UsbControlLibrary& control, std::atomic<platform::PipeHandle>& copy,
                     platform::PipeHandle& entryPipe, bool abandoned) {
    const platform::PipeHandle pipe = copy.exchange(platform::noPipe);
    if (pipe == entryPipe) closeEntryPipe(control, entryPipe, abandoned);
}

}  // namespace

void checkSelectedDevice(PrinterObject& printer) {
    DeviceEntry* entry = openEntry(printer.deviceIndex);
    if (entry == nullptr || !isGone(printer.control, *entry)) return;
    closeObjectPipe(printer.control, printer.writer.pipe, entry->writePipe, writePipeAbandoned);
    closeObjectPipe(printer.control, printer.reader.pipe, entry->readPipe, readPipeAbandoned);
    printer.deviceIndex = noDeviceIndex;
}

void sweepDevices(const PrinterObject& printer) {
    for (uint32_t index = 0; index < printer.scanLimit; ++index) {
        DeviceEntry* entry = openEntry(index);
        if (entry != nullptr && isGone(printer.control, *entry)) closeEntryDevice(printer.control, *entry);
    }
}

}  // namespace device
