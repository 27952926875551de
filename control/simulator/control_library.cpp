#include "control_library.h"

#include <cstring>
#include <string>

#include "simulation.h"

using simulator::Simulation;

namespace {

constexpr size_t nameSize = 1024;

uint32_t handOut(const std::optional<std::string>& text, char* place) {
    if (!text || place == nullptr) return 0;
    const size_t length = text->copy(place, nameSize - 1);
    place[length] = '\0';
    return 1;
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

extern "C" {

uint64_t SDKUsb_Open(uint32_t deviceNumber) {
    return guarded([=](Simulation& all) { return all.open(deviceNumber); }, simulator::noDevice);
}

uint64_t SDKUsb_OpenEx(uint32_t deviceNumber, uint32_t) {
    return SDKUsb_Open(deviceNumber);
}

void SDKUsb_Close(uint64_t device) {
    guarded([=](Simulation& all) { return all.close(device), true; }, false);
}

uint64_t SDKUsb_GetDeviceHandle(uint32_t deviceNumber) {
    return SDKUsb_CheckDeviceName(deviceNumber);
}

uint32_t SDKUsb_GetDeviceName(uint64_t device, char* name) {
    return guarded([=](Simulation& all) { return handOut(all.devicePath(device), name); }, uint32_t{0});
}

uint64_t SDKUsb_GetPipeHandle(uint64_t device, uint32_t, uint8_t pipeNumber, uint32_t) {
    return guarded([=](Simulation& all) { return all.pipe(device, pipeNumber); }, simulator::noPipe);
}

void SDKUsb_ClosePipe(uint64_t pipe) {
    guarded([=](Simulation& all) { return all.closePipe(pipe), true; }, false);
}

uint32_t SDKUsb_AbortPipe(uint64_t) {
    return 0;
}

uint32_t SDKUsb_ResetPipe(uint64_t) {
    return 0;
}

uint32_t SDKUsb_ResetDevice(uint64_t) {
    return 0;
}

uint64_t SDKUsb_CheckDeviceName(uint32_t deviceNumber) {
    return guarded([=](Simulation& all) { return all.openHandle(deviceNumber); }, simulator::noDevice);
}

uint32_t SDKUsb_CheckDevice(uint64_t device) {
    return guarded([=](Simulation& all) { return uint32_t{all.isOpen(device)}; }, uint32_t{0});
}

uint32_t SDKUsb_GetDeviceIDString(uint64_t device, char* text) {
    return guarded(
        [=](Simulation& all) {
            const auto serial = all.serial(device);
            if (!serial) return uint32_t{0};
            return handOut("MFG:SIMULATED;MDL:RQX5820 SIMULATED;SN:" + *serial + ";", text);
        },
        uint32_t{0});
}
}
