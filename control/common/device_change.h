#pragma once

namespace control {

/// Tells this process that devices came or went: as WM_DEVICECHANGE, posted to its top-level windows, on
/// Windows; as a datagram to the socket "zprusb-device-change-PID" in the abstract namespace on Linux.
void notifyDeviceChange();

}  // namespace control
