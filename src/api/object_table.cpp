#include "api/object_table.h"

#include <algorithm>

#include "platform/fork.h"
#include "platform/lock.h"
#include "platform/memory.h"
#include "platform/thread.h"

namespace api {

namespace {

using HoldingTables = platform::Holding<platform::Lock>;

constexpr uint32_t freeThread = 0xFFFFFFFF;

constexpr std::array<uint32_t, slotCount> allFree() {
    std::array<uint32_t, slotCount> threads{};
    for (uint32_t& thread : threads) thread = freeThread;
    return threads;
}

/// A leaf: nothing is waited for or locked while it is held.
constinit platform::Lock tablesLock;
constinit std::array<PrinterObject*, slotCount> objectTable GUARDED_BY(tablesLock){};
constinit std::array<uint32_t, slotCount> threadBindingTable GUARDED_BY(tablesLock) = allFree();
constinit uint32_t usedSlots GUARDED_BY(tablesLock) = 1;

/// The table's side of the slot lookups.
int slotOf(uint32_t thread) REQUIRES(tablesLock) {
    const auto end = threadBindingTable.begin() + usedSlots;
    const auto found = std::find(threadBindingTable.begin(), end, thread);
    return found != end ? static_cast<int>(found - threadBindingTable.begin()) : noSlot;
}

int slotOfUnbound() REQUIRES(tablesLock) {
    return usedSlots == 1 ? 0 : noSlot;
}

/// Whoever frees an object is its last user and needs no lock for it.
void freeObject(PrinterObject* object) NO_THREAD_SAFETY_ANALYSIS {
    std::free(object->buffers.image);
    std::free(object->buffers.page);
    std::free(object->buffers.work);
    device::leaveControlLibrary(object->control);
    platform::destroy(object);
}

/// @return the object if this was its last use and it is to be freed.
PrinterObject* dropUse(PrinterObject* object) REQUIRES(tablesLock) {
    if (object == nullptr || --object->uses != 0) return nullptr;
    return object;
}

}  // namespace

ObjectUse::ObjectUse(int slot) : object_(nullptr) {
    if (slot == noSlot) return;
    HoldingTables lock(tablesLock);
    object_ = objectTable[static_cast<uint32_t>(slot)];
    if (object_ != nullptr) ++object_->uses;
}

ObjectUse::~ObjectUse() {
    PrinterObject* last = nullptr;
    {
        HoldingTables lock(tablesLock);
        last = dropUse(object_);
    }
    if (last != nullptr) freeObject(last);
}

int bindThreadSlot() {
    const uint32_t thread = platform::currentThreadId();
    HoldingTables lock(tablesLock);
    const int bound = slotOf(thread);
    if (bound != noSlot) return bound;
    const int free = slotOf(freeThread);
    if (free == noSlot) return slotOfUnbound();
    threadBindingTable[static_cast<uint32_t>(free)] = thread;
    return free;
}

int findThreadSlot() {
    const uint32_t thread = platform::currentThreadId();
    HoldingTables lock(tablesLock);
    const int bound = slotOf(thread);
    return bound != noSlot ? bound : slotOfUnbound();
}

void unbindThread() {
    const uint32_t thread = platform::currentThreadId();
    HoldingTables lock(tablesLock);
    std::replace(threadBindingTable.begin(), threadBindingTable.end(), thread, freeThread);
}

uint32_t boundThreadCount() {
    HoldingTables lock(tablesLock);
    const auto free = std::count(threadBindingTable.begin(), threadBindingTable.end(), freeThread);
    return slotCount - static_cast<uint32_t>(free);
}

bool isSlotBound(uint32_t slot) {
    HoldingTables lock(tablesLock);
    return threadBindingTable[slot] != freeThread;
}

uint32_t objectCount() {
    HoldingTables lock(tablesLock);
    return usedSlots;
}

void setObjectCount(uint32_t count) {
    HoldingTables lock(tablesLock);
    usedSlots = count;
}

void forEachObject(void (*function)(PrinterObject& printer)) {
    for (uint32_t slot = 0; slot < objectCount(); ++slot) {
        const ObjectUse object(static_cast<int>(slot));
        if (object) function(*object);
    }
}

void resetObjectTableInChild() {
    platform::startAnew(tablesLock);
    const HoldingTables lock(tablesLock);
    objectTable = {};
    threadBindingTable.fill(freeThread);
    usedSlots = 1;
}

bool fillSlot(uint32_t slot) {
    auto* object = platform::create<PrinterObject>();
    if (object == nullptr) return false;
    object->uses = 1;
    HoldingTables lock(tablesLock);
    objectTable[slot] = object;
    return true;
}

void emptySlot(uint32_t slot) {
    PrinterObject* last = nullptr;
    {
        HoldingTables lock(tablesLock);
        last = dropUse(objectTable[slot]);
        objectTable[slot] = nullptr;
        threadBindingTable[slot] = freeThread;
    }
    if (last != nullptr) freeObject(last);
}

}  // namespace api
