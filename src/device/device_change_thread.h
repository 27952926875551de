/// The background thread that the system tells of device changes. At most one runs per process.
#pragma once

#include "device/api_lock.h"

namespace device {

/// Runs on the thread for each change of the device nodes.
/// @param stop set while it runs once the thread is to end: the handler then waits for nothing any more.
using DeviceChangeHandler = void (*)(const std::atomic<bool>& stop);

/// Starts the thread unless it has been started.
void startDeviceChangeThread(DeviceChangeHandler handler) REQUIRES(apiLock);

/// Asks the thread to end and waits for it, with the API lock held by the caller: about 0.2 s, and at most 5 s.
void stopDeviceChangeThread() REQUIRES(apiLock);

/// In the child of a fork, which has no such thread.
void resetDeviceChangeThreadInChild() REQUIRES(apiLock);

}  // namespace device
