#include "device/reservation.h"

#include <utility>

namespace device {

namespace {

using platform::MutexWait;
using platform::NamedMutex;

uint16_t codeOfWait(MutexWait wait) {
    switch (wait) {
        case MutexWait::obtained:
            return ZPRUSB_SUCCESS;
        case MutexWait::timedOut:
        case MutexWait::abandoned:
            return ZPRUSB_PRINTER_BUSY;
        case MutexWait::failed:
            break;
    }
    return ZPRUSB_UNEXPECTED;
}

NamedMutex* exchangePageMutex(PrinterObject& printer, NamedMutex* mutex) {
    platform::Holding<platform::Lock> lock(deviceTableLock);
    return std::exchange(printer.pageMutex, mutex);
}

NamedMutex* shareSelectedMutex(const PrinterObject& printer) {
    DeviceEntry* entry = openEntry(printer.deviceIndex);
    return entry != nullptr ? shareEntryMutex(*entry) : nullptr;
}

}  // namespace

Reservation::~Reservation() {
    platform::releaseNamedMutex(mutex_);
    platform::closeNamedMutex(mutex_);
}

void Reservation::keepForPage(PrinterObject& printer) {
    platform::closeNamedMutex(exchangePageMutex(printer, std::exchange(mutex_, nullptr)));
}

Reservation acquireDevice(const PrinterObject& printer, uint16_t* resultCode) {
    DeviceEntry* entry = openEntry(printer.deviceIndex);
    if (entry == nullptr) {
        setResult(resultCode, ZPRUSB_NO_PRINTER);
        return Reservation();
    }
    NamedMutex* mutex = shareEntryMutex(*entry);
    const MutexWait wait = platform::waitForNamedMutex(mutex, reservationLimitMilliseconds);
    setResult(resultCode, codeOfWait(wait));
    if (wait == MutexWait::obtained) return Reservation(mutex);
    // An abandoned mutex now belongs to this thread: given back at once, it is in order for the next attempt.
    if (wait == MutexWait::abandoned) platform::releaseNamedMutex(mutex);
    platform::closeNamedMutex(mutex);
    return Reservation();
}

void releasePage(PrinterObject& printer) {
    NamedMutex* selected = shareSelectedMutex(printer);
    NamedMutex* kept = exchangePageMutex(printer, nullptr);
    const bool ended =
        platform::releaseNamedMutex(selected) ? kept == selected : platform::releaseNamedMutex(kept);
    if (!ended) kept = exchangePageMutex(printer, kept);  // the page is another printer's or another thread's
    platform::closeNamedMutex(kept);
    platform::closeNamedMutex(selected);
}

}  // namespace device
