#include "api/object_lifecycle.h"

#include <cstdlib>

#include "api/device_change.h"
#include "api/object_table.h"
#include "api/printer_list.h"
#include "device/api_lock.h"
#include "device/device_change_thread.h"
#include "device/device_table.h"
#include "device/selection.h"
#include "platform/thread.h"

namespace api {

using device::apiLock;
using device::done;
using device::failure;

namespace {

constexpr uint32_t releasePauseMilliseconds = 50;
constexpr uint32_t firstSearchLookMilliseconds = 10;

bool allocate(uint8_t*& buffer, uint32_t size) {
    if (buffer == nullptr) buffer = static_cast<uint8_t*>(std::malloc(size));
    return buffer != nullptr;
}

bool allocateBuffers(device::WorkingBuffers& buffers) {
    using Buffers = device::WorkingBuffers;
    return allocate(buffers.image, Buffers::imageSize) && allocate(buffers.page, Buffers::pageSize) &&
           allocate(buffers.work, Buffers::workSize);
}

/// Whether a thread is in the first search of the process, which may be away from the API lock.
constinit bool firstSearchRuns GUARDED_BY(apiLock) = false;

/// The first search of the process. Later ones probe only as many device numbers as it opened devices; one that
/// found no printer limits nothing.
bool fillDeviceTable(PrinterObject& printer) REQUIRES(apiLock) {
    device::resetDeviceTable(0x00);
    uint8_t list[device::deviceCount];
    firstSearchRuns = true;
    const uint32_t found = listPrinters(list);
    firstSearchRuns = false;
    if (found != 0) printer.scanLimit = printer.openedCount;
    device::deviceTableReady = found != 0;
    return device::deviceTableReady;
}

/// Opens one object; on one that is open already, repeats only the steps whose results are missing.
Result openObject(PrinterObject& printer) REQUIRES(apiLock) {
    if (!device::deviceTableReady) device::resetDeviceTable(0xFF);
    if (printer.control == nullptr) printer.control = device::useControlLibrary();
    if (printer.control == nullptr) return failure(ZPRUSB_NO_CONTROL_LIBRARY);
    if (!allocateBuffers(printer.buffers)) return failure(ZPRUSB_OUT_OF_MEMORY);
    if (!device::deviceTableReady && !fillDeviceTable(printer)) return failure(ZPRUSB_NO_PRINTER_FOUND);
    if (!printer.opened) {
        (void)device::selectByIndex(printer, 0);  // when there is no printer of that index, none is selected
        printer.opened = true;
    }
    return done;
}

bool isFilled(uint32_t slot) {
    return static_cast<bool>(ObjectUse(static_cast<int>(slot)));
}

/// Opens the object of a slot, which is made first if the slot is empty.
Result openSlot(uint32_t slot) REQUIRES(apiLock) {
    if (!isFilled(slot) && !fillSlot(slot)) return failure(ZPRUSB_OUT_OF_MEMORY);
    const ObjectUse object(static_cast<int>(slot));
    return openObject(*object);
}

void allowUpdates(uint32_t slot) {
    const ObjectUse object(static_cast<int>(slot));
    (*object).update.allowed = true;
}

/// Ends what the object has of the outside world. Its memory goes with its last user.
void tearDown(uint32_t slot) REQUIRES(apiLock) {
    const ObjectUse object(static_cast<int>(slot));
    if (!object) return;
    device::releaseAllDeviceMutexes(*object);
    device::closeAllDevices(*object);
    emptySlot(slot);
}

bool isAnyThreadBound() {
    for (uint32_t slot = 0; slot < objectCount(); ++slot) {
        if (isSlotBound(slot)) return true;
    }
    return false;
}

}  // namespace

void waitForFirstSearch() {
    while (firstSearchRuns) {
        const device::AwayFromApiLock away(device::AwayFromApiLock::Admitted::everybody);
        platform::sleepMilliseconds(firstSearchLookMilliseconds);
    }
}

bool makeObjects(uint16_t count) {
    waitForFirstSearch();
    if (count < objectCount() || count > slotCount) return false;
    setObjectCount(count);
    for (uint32_t slot = 0; slot < count; ++slot) {
        if (!isFilled(slot) && !openSlot(slot)) return false;
    }
    return true;
}

Result openLibrary(Purpose purpose) {
    waitForFirstSearch();
    for (uint32_t slot = 0; slot < objectCount(); ++slot) {
        const Result opened = openSlot(slot);
        if (!opened) {
            (void)releaseObjects();
            return opened;
        }
        if (purpose == Purpose::update) allowUpdates(slot);
    }
    const bool bound = bindThreadSlot() != noSlot;
    device::startDeviceChangeThread(handleDeviceChange);
    return bound ? done : failure(ZPRUSB_NO_OBJECT);
}

Result releaseObjects() {
    platform::sleepMilliseconds(releasePauseMilliseconds);
    if (isAnyThreadBound()) return failure(ZPRUSB_STILL_IN_USE);
    for (uint32_t slot = 0; slot < objectCount(); ++slot) tearDown(slot);
    setObjectCount(1);
    return done;
}

void closeLibrary() {
    unbindThread();
    if (boundThreadCount() != 0) return;
    (void)releaseObjects();
    device::stopDeviceChangeThread();
}

void resetLifecycleInChild() {
    firstSearchRuns = false;
}

}  // namespace api
