#include "common/devices.h"
#include "simulation.h"

using simulator::Simulation;

namespace control {
namespace {

bool handOut(const std::optional<std::string>& text, char (&place)[textSize]) {
    if (!text) return false;
    place[text->copy(place, textSize - 1)] = '\0';
    return true;
}

// Nothing may be thrown into the host.
template <class Operation, class Result>
Result guarded(Operation operation, Result otherwise) noexcept {
    try {
        return operation(Simulation::instance());
    } catch (...) {
        return otherwise;
    }
}

}  // namespace

const char* const libraryKind = "the simulator";

DeviceHandle openDevice(uint32_t number) noexcept {
    return guarded([=](Simulation& all) { return all.open(number); }, noDevice);
}

DeviceHandle findOpenDevice(uint32_t number) noexcept {
    return guarded([=](Simulation& all) { return all.openHandle(number); }, noDevice);
}

void closeDevice(DeviceHandle device) noexcept {
    guarded([=](Simulation& all) { return all.close(device), true; }, false);
}

bool describePath(DeviceHandle device, char (&text)[textSize]) noexcept {
    return guarded([&](Simulation& all) { return handOut(all.devicePath(device), text); }, false);
}

bool describeDevice(DeviceHandle device, char (&text)[textSize]) noexcept {
    return guarded([&](Simulation& all) { return handOut(all.deviceId(device), text); }, false);
}

HostPipe givePipe(DeviceHandle device, uint8_t number) noexcept {
    return guarded([=](Simulation& all) { return all.pipe(device, number); }, noPipe);
}

void closePipe(HostPipe pipe) noexcept {
    guarded([=](Simulation& all) { return all.closePipe(pipe), true; }, false);
}

}  // namespace control
