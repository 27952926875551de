/// The system's reports that devices came or went: a hidden window's messages on Windows, the kernel's device
/// notifications on Linux.
///
/// On Linux a change can also be reported without the kernel: a datagram of any content to the abstract socket
/// "zprusb-device-change-PID", where PID is the process identifier in decimal, counts as one. A control library
/// that learns of a change by other means uses it, as the simulator does.
#pragma once

namespace platform {

/// A listener for the reports. It belongs to the thread that opened it.
struct DeviceChanges;

/// @return null when the system refuses; there, nothing is ever reported.
DeviceChanges* openDeviceChanges();

/// Takes the next report without waiting. On Linux all notifications that have come in since the last call are
/// one; the kernel's count when they tell that a USB device was added or removed, or that some were lost. A
/// listener that is not the only one of its process gets what others report once the former ones are gone, and
/// one report first, for what nobody may have got in between.
/// @return whether there was one. On Windows also false for a message of another kind, which is taken as well.
bool takeDeviceChange(DeviceChanges* changes);

/// Accepts null.
void closeDeviceChanges(DeviceChanges* changes);

/// In the child of a fork, closes what it has inherited of its parent's listeners, which stay the parent's.
void closeDeviceChangesInChild();

}  // namespace platform
