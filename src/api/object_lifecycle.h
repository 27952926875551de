/// Creating, opening and releasing the printer objects.
#pragma once

#include "device/printer_object.h"

namespace api {

using device::Result;

/// Another thread's opening may be looking for the printers, and then without the API lock: who would disturb
/// its search waits for its end.
void waitForFirstSearch() REQUIRES(device::apiLock);

/// Raises the number of objects and opens those that are missing.
bool makeObjects(uint16_t count) REQUIRES(device::apiLock);

/// What the objects are opened for. Those that are open for updates stay so.
enum class Purpose { printing, update };

/// Opens all objects and binds the calling thread; on failure releases them again, unless a thread is bound.
Result openLibrary(Purpose purpose) REQUIRES(device::apiLock);

/// Refuses with 1502 while a thread is bound.
Result releaseObjects() REQUIRES(device::apiLock);

void closeLibrary() REQUIRES(device::apiLock);

/// In the child of a fork, in which no opening is under way.
void resetLifecycleInChild() REQUIRES(device::apiLock);

}  // namespace api
