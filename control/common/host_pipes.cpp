#include "common/host_pipes.h"

namespace control {

void HostPipes::End::close() {
    if (pipe != noPipe) closeHostPipe(pipe);
    pipe = noPipe;
}

void HostPipes::put(DeviceHandle device, HostPipe write, HostPipe read) {
    for (End& end : ends_[device]) end.close();
    ends_[device][writePipeNumber] = {write, false};
    ends_[device][readPipeNumber] = {read, false};
}

HostPipe HostPipes::give(DeviceHandle device, uint8_t number) {
    if (device >= maximumDevices || number > readPipeNumber) return noPipe;
    End& end = ends_[device][number];
    end.given = true;
    return end.pipe;
}

void HostPipes::closeUngiven(DeviceHandle device) {
    if (device >= maximumDevices) return;
    for (End& end : ends_[device]) {
        if (!end.given) end.close();
    }
}

void HostPipes::close(HostPipe pipe) {
    for (auto& ofDevice : ends_) {
        for (End& end : ofDevice) {
            if (end.pipe == pipe) end.close();
        }
    }
}

}  // namespace control
