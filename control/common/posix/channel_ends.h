/// The descriptors of the two pipes between the host and one device, and of what wakes the device's thread.
#pragma once

#include "common/posix/descriptor.h"

namespace control {

struct ChannelEnds {
    Descriptor requests, answers;  // the device's; they don't block
    Descriptor wake;               // an eventfd
    Descriptor hostWrite, hostRead;

    /// What the host writes goes through a stream that holds much of it.
    bool makeBuffered();

    /// The request pipe has room for one write of up to 4096 bytes, so that the host can wait until the device
    /// has taken it. An answer of no bytes, which such a host's read sees as the end, can be given as well.
    bool makeOneAtATime();
};

}  // namespace control
