#pragma once

#include "platform/lock.h"

namespace device {

/// Serialises the entry points, the transfers on worker threads and the handling of device changes. It stands
/// here with its lowest user, the transport. Order: an entry point that takes it takes it before a printer's
/// named mutex; one that runs without it takes the mutex first and this lock inside its transfers. The limit
/// of 500 ms on the wait for the mutex keeps the two orders from blocking each other for longer.
inline constinit platform::RecursiveLock apiLock;

using HoldingApiLock = platform::Holding<platform::RecursiveLock>;

}  // namespace device
