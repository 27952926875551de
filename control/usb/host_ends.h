/// The host's ends of all printers' pipes, for any thread.
#pragma once

#include "common/host_pipes.h"
#include "common/posix/descriptor.h"

namespace usb {

using control::DeviceHandle;
using control::HostPipe;

void putHostEnds(DeviceHandle device, control::Descriptor write, control::Descriptor read);
HostPipe giveHostEnd(DeviceHandle device, uint8_t number);
void closeUngivenHostEnds(DeviceHandle device);
void closeHostEnd(HostPipe pipe);

/// Puts another pipe behind the number that the host writes to. A write to the former one that is under way
/// goes on there.
/// @return false when the host has closed its end.
bool replaceHostWriteEnd(DeviceHandle device, const control::Descriptor& writer);

/// Around a fork, so that the child finds them whole.
void lockHostEnds();
void unlockHostEnds();

}  // namespace usb
