/// The printer objects of the process, and which thread works with which.
///
/// A leaf lock of its own guards the tables, because some entry points look up their object without the
/// API lock. Whoever works with an object has an ObjectUse, so that an object that is released meanwhile lives
/// until its last user has left it.
#pragma once

#include "device/printer_object.h"

namespace api {

using device::PrinterObject;

constexpr uint32_t slotCount = ZPRUSB_MAX_OBJECTS;
constexpr int noSlot = -1;

/// A use of the object in a slot; empty when the slot is.
class ObjectUse {
public:
    explicit ObjectUse(int slot);
    ~ObjectUse();
    ObjectUse(const ObjectUse&) = delete;
    ObjectUse& operator=(const ObjectUse&) = delete;
    explicit operator bool() const { return object_ != nullptr; }
    PrinterObject& operator*() const { return *object_; }

private:
    PrinterObject* object_;
};

/// The slot of the calling thread, which is bound to the lowest free slot if it has none. With one object, that
/// is slot 0 for every thread.
/// @return `noSlot` when all slots are bound to other threads.
int bindThreadSlot();

/// As bindThreadSlot(), but binds nothing.
int findThreadSlot();

/// Frees every slot that is bound to the calling thread.
void unbindThread();

uint32_t boundThreadCount();
bool isSlotBound(uint32_t slot);

uint32_t objectCount();
void setObjectCount(uint32_t count);

/// Calls the function for the object of every slot that has one.
void forEachObject(void (*function)(PrinterObject& printer));

/// In the child of a fork: as in a process that has made no object. The parent's are not freed.
void resetObjectTableInChild();

/// Makes an object in an empty slot.
/// @return false when there is no memory.
bool fillSlot(uint32_t slot);

/// Empties a slot and unbinds it. The object's memory goes with its last user.
void emptySlot(uint32_t slot);

}  // namespace api
