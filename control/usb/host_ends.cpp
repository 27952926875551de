#include "host_ends.h"

#include <fcntl.h>

#include "lock.h"

namespace usb {
namespace {

// Never held while anything is waited for.
pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
constinit control::HostPipes pipes;

}  // namespace

void putHostEnds(DeviceHandle device, control::Descriptor write, control::Descriptor read) {
    const Lock lock(mutex);
    pipes.put(device, static_cast<HostPipe>(write.release()), static_cast<HostPipe>(read.release()));
}

HostPipe giveHostEnd(DeviceHandle device, uint8_t number) {
    const Lock lock(mutex);
    return pipes.give(device, number);
}

void closeUngivenHostEnds(DeviceHandle device) {
    const Lock lock(mutex);
    pipes.closeUngiven(device);
}

void closeHostEnd(HostPipe pipe) {
    const Lock lock(mutex);
    pipes.close(pipe);
}

bool replaceHostWriteEnd(DeviceHandle device, const control::Descriptor& writer) {
    const Lock lock(mutex);
    const HostPipe end = pipes.find(device, control::writePipeNumber);
    return end != control::noPipe && dup3(writer.get(), static_cast<int>(end), O_CLOEXEC) >= 0;
}

void lockHostEnds() {
    pthread_mutex_lock(&mutex);
}

void unlockHostEnds() {
    pthread_mutex_unlock(&mutex);
}

}  // namespace usb
