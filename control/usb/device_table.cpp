#include "device_table.h"

#include <algorithm>
#include <cstring>

#include "lock.h"
#include "pump.h"

namespace usb {
namespace {

struct Slot {
    ConnectedPrinter printer;  // as it was seen last; without a port while the slot is free
    Pump* pump = nullptr;      // while it is open
};

struct Bus {
    ConnectedPrinter printers[maximumPrinters];
    size_t count = 0;

    const ConnectedPrinter* at(const char* port) const {
        const auto* end = printers + count;
        const auto* found =
            std::find_if(printers, end, [&](const auto& one) { return std::strcmp(one.port, port) == 0; });
        return found != end ? found : nullptr;
    }
};

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
constinit Slot slots[control::maximumDevices];

void lockAll() {
    pthread_mutex_lock(&mutex);
    lockHostEnds();
}

void unlockAll() {
    unlockHostEnds();
    pthread_mutex_unlock(&mutex);
}

[[gnu::constructor]] void keepWholeInForks() {
    pthread_atfork(lockAll, unlockAll, unlockAll);
}

bool isOpen(const Slot& slot) {
    return slot.pump != nullptr && !slot.pump->isGone();
}

void close(Slot& slot) {
    if (slot.pump != nullptr) std::exchange(slot.pump, nullptr)->stop();
}

template <class Matches>
Slot* findSlot(Matches matches) {
    const auto found = std::find_if(std::begin(slots), std::end(slots), matches);
    return found != std::end(slots) ? &*found : nullptr;
}

Slot* slotOf(const ConnectedPrinter& printer, const Bus& bus) {
    const auto isVacant = [&](const Slot& slot) {
        return !isOpen(slot) && bus.at(slot.printer.port) == nullptr;
    };
    const auto isAtPort = [&](const Slot& slot) { return std::strcmp(slot.printer.port, printer.port) == 0; };
    const auto hasMoved = [&](const Slot& slot) {
        return printer.serial[0] != '\0' && std::strcmp(slot.printer.serial, printer.serial) == 0 &&
               isVacant(slot);
    };
    if (Slot* slot = findSlot(isAtPort)) return slot;
    if (Slot* slot = findSlot(hasMoved)) return slot;
    return findSlot(isVacant);
}

// A printer that can't be used gets no number: hosts expect the numbers of printers without a gap.
void lookOnBus(Bus& bus) {
    bus.count = findPrinters(bus.printers);
    for (size_t i = 0; i < bus.count; ++i) {
        if (!isUsable(bus.printers[i])) continue;
        Slot* slot = slotOf(bus.printers[i], bus);
        if (slot != nullptr && !isOpen(*slot)) slot->printer = bus.printers[i];
    }
}

}  // namespace

bool openPrinter(uint32_t number) {
    if (number >= control::maximumDevices) return false;
    const Lock lock(mutex);
    Slot& slot = slots[number];
    if (isOpen(slot)) return true;
    close(slot);
    Bus bus;
    lookOnBus(bus);
    if (bus.at(slot.printer.port) == nullptr) return false;
    slot.pump = Pump::start(number, slot.printer);
    return slot.pump != nullptr;
}

void closePrinter(control::DeviceHandle device) {
    if (device >= control::maximumDevices) return;
    const Lock lock(mutex);
    close(slots[device]);
    closeUngivenHostEnds(device);
}

bool findOpenPrinter(control::DeviceHandle device, ConnectedPrinter& printer) {
    if (device >= control::maximumDevices) return false;
    const Lock lock(mutex);
    printer = slots[device].printer;
    return isOpen(slots[device]);
}

}  // namespace usb
