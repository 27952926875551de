#include "device/reservation.h"

#include <algorithm>
#include <utility>

#include "device/api_lock.h"

namespace device {

namespace {

using platform::MutexWait;
using platform::NamedMutex;

Result resultOfWait(MutexWait wait) {
    switch (wait) {
        case MutexWait::obtained:
            return done;
        case MutexWait::timedOut:
        case MutexWait::abandoned:
            return failure(ZPRUSB_PRINTER_BUSY);
        case MutexWait::failed:
            break;
    }
    return failure(ZPRUSB_UNEXPECTED);
}

NamedMutex* shareSelectedMutex(const std::atomic<uint8_t>& deviceIndex) {
    DeviceEntry* entry = openEntry(deviceIndex);
    return entry != nullptr ? shareEntryMutex(*entry) : nullptr;
}

NamedMutex* shareKeptMutex(const PrinterObject& printer) {
    const HoldingTable lock(deviceTableLock);
    return platform::shareNamedMutex(printer.pageMutex);
}

/// Forgets what the last page start kept if it is this mutex.
void forgetPage(PrinterObject& printer, NamedMutex* mutex) {
    NamedMutex* kept = nullptr;
    {
        const HoldingTable lock(deviceTableLock);
        if (printer.pageMutex == mutex) std::swap(kept, printer.pageMutex);
    }
    platform::closeNamedMutex(kept);
}

/// Releases a mutex of which the caller has a use, and ends the use.
bool releaseOnce(PrinterObject& printer, NamedMutex* mutex) {
    const bool released = platform::releaseNamedMutex(mutex);
    if (released) forgetPage(printer, mutex);
    platform::closeNamedMutex(mutex);
    return released;
}

/// Waits only if it has to, and then without the API lock.
MutexWait waitForPrinter(NamedMutex* mutex) {
    const MutexWait atOnce = platform::waitForNamedMutex(mutex, 0);
    if (atOnce != MutexWait::timedOut) return atOnce;
    const AwayFromApiLock away(AwayFromApiLock::Admitted::ownersOfPrinters);
    return platform::waitForNamedMutex(mutex, reservationLimitMilliseconds);
}

/// Another thread may have selected another printer for the object during the wait.
bool isSelected(const std::atomic<uint8_t>& deviceIndex, NamedMutex* mutex) {
    const DeviceEntry* entry = openEntry(deviceIndex);
    const HoldingTable lock(deviceTableLock);
    return entry != nullptr && entry->mutex == mutex;
}

/// False when the device was unplugged since, though it be open again.
bool isStillOpen(uint32_t opening) {
    return std::any_of(deviceTable.begin(), deviceTable.end(), [=](const DeviceEntry& entry) {
        return entry.opening == opening && entry.handle != noDevice;
    });
}

}  // namespace

Reservation::~Reservation() {
    platform::releaseNamedMutex(mutex_);
    platform::closeNamedMutex(mutex_);
}

void Reservation::keepForPage(PrinterObject& printer) {
    NamedMutex* former = std::exchange(mutex_, nullptr);
    const DeviceEntry* entry = openEntry(printer.deviceIndex);
    const uint32_t opening = entry != nullptr ? entry->opening.load() : 0;
    bool wasUnplugged = false;
    {
        const HoldingTable lock(deviceTableLock);
        wasUnplugged = former == printer.pageMutex && printer.pageOpening != opening;
        std::swap(former, printer.pageMutex);
        printer.pageOpening = opening;
    }
    // The same printer has come back as another device: the page that it lost has nothing to keep any more.
    if (wasUnplugged) platform::releaseNamedMutex(former);
    platform::closeNamedMutex(former);
}

Reservation reserve(const std::atomic<uint8_t>& deviceIndex) {
    for (;;) {
        NamedMutex* mutex = shareSelectedMutex(deviceIndex);
        if (openEntry(deviceIndex) == nullptr) {  // looked at last, as a sweep may come in between
            platform::closeNamedMutex(mutex);
            return {nullptr, failure(ZPRUSB_NO_PRINTER)};
        }
        const MutexWait wait = waitForPrinter(mutex);
        const Result result = resultOfWait(wait);
        if (result && isSelected(deviceIndex, mutex)) return {mutex, result};
        // An abandoned mutex now belongs to this thread: given back at once, it is in order for the next
        // attempt.
        if (result || wait == MutexWait::abandoned) platform::releaseNamedMutex(mutex);
        platform::closeNamedMutex(mutex);
        if (!result) return {nullptr, result};
    }
}

Reservation reserve(const PrinterObject& printer) {
    return reserve(printer.deviceIndex);
}

void releasePage(PrinterObject& printer) {
    if (!releaseOnce(printer, shareSelectedMutex(printer.deviceIndex)))
        releaseOnce(printer, shareKeptMutex(printer));
}

void releaseSection(PrinterObject& printer) {
    NamedMutex* selected = shareSelectedMutex(printer.deviceIndex);
    releaseOnce(printer, selected != nullptr ? selected : shareKeptMutex(printer));
}

void dropLostPage(PrinterObject& printer) {
    NamedMutex* lost = nullptr;
    {
        const HoldingTable lock(deviceTableLock);
        if (!isStillOpen(printer.pageOpening)) std::swap(lost, printer.pageMutex);
    }
    platform::revokeNamedMutex(lost);
    platform::closeNamedMutex(lost);
}

}  // namespace device
