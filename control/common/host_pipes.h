/// The host's ends of all devices' pipes, and whose they are to close: the control library's until they are
/// given out, the host's from then on.
#pragma once

#include <cstddef>

#include "common/devices.h"

namespace control {

constexpr uint8_t writePipeNumber = 0;
constexpr uint8_t readPipeNumber = 1;

class HostPipes {
public:
    /// Takes the ends of a device that was opened. Those of the time before that the host never closed are
    /// closed: nothing answers on them any more.
    void put(DeviceHandle device, HostPipe write, HostPipe read);

    /// @return none when the device has no such pipe.
    HostPipe give(DeviceHandle device, uint8_t number);

    /// @return the end as long as it is not closed.
    HostPipe find(DeviceHandle device, uint8_t number) const { return ends_[device][number].pipe; }

    /// Closes those of a device that the host never asked for.
    void closeUngiven(DeviceHandle device);

    /// Closes an end of ours; any other number is left alone.
    void close(HostPipe pipe);

private:
    struct End {
        HostPipe pipe = noPipe;
        bool given = false;
        void close();
    };
    End ends_[maximumDevices][2];
};

/// Closes an end that was given to the host.
void closeHostPipe(HostPipe pipe);

}  // namespace control
