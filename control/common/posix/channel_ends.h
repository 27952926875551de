/// The descriptors of the two pipes between the host and one device, and of what wakes the device's thread.
#pragma once

#include "common/posix/descriptor.h"

namespace control {

enum class RequestPipe {
    buffered,     // a stream that holds much of what the host writes
    oneTransfer,  // has room for one write of up to 4096 bytes: the host can wait until the device has taken it
};

/// @return whether the system gave it. The reading end doesn't block.
bool makeRequestPipe(RequestPipe kind, Descriptor& reader, Descriptor& writer);

struct ChannelEnds {
    Descriptor requests, answers;  // the device's; they don't block
    Descriptor wake;               // an eventfd
    Descriptor hostWrite, hostRead;

    /// @return whether the system gave all of it.
    bool make(RequestPipe kind);
};

}  // namespace control
