/// The background thread that the system tells of device changes. At most one runs per process.
#pragma once

namespace device {

/// Runs on the thread for each change of the device nodes.
using DeviceChangeHandler = void (*)();

/// Starts the thread unless it has been started. The caller holds the ApiLock.
void startMessageWindowThread(DeviceChangeHandler handler);

/// Asks the thread to end and waits for it at most 5 s, with the ApiLock held by the caller. A thread that
/// waits for that lock right then ends after the lock is left; its handler finds nothing open any more.
void stopMessageWindowThread();

}  // namespace device
