#include "simulation.h"

#include <algorithm>
#include <cstdio>

#include "common/device_change.h"
#include "remote.h"
#include "system.h"

namespace simulator {
namespace {

constexpr const char* ownDigits = "vid_5a2c&pid_0012";
constexpr const char* foreignDigits = "vid_ffff&pid_0001";

std::string configurationText() {
    const auto path = pathFromEnvironment("ZPRUSB_SIMULATOR");
    return path ? readConfigurationFile(*path) : "{}";
}

bool isPresent(Printer& printer) {
    const std::lock_guard lock(printer.mutex);
    return printer.isPresent();
}

void change(Printer& printer, const Change& change) {
    const std::lock_guard lock(printer.mutex);
    if (change.condition) printer.setCondition(*change.condition);
    if (change.statusFlags) printer.statusFlags = change.statusFlags;
    if (change.plugged) printer.absentUntil = *change.plugged ? Clock::time_point() : Clock::time_point::max();
}

}  // namespace

Simulation& Simulation::instance() {
    static Simulation* const simulation = new Simulation;
    return *simulation;
}

Simulation::Simulation() {
    stayLoaded();
    try {
        build(parseConfiguration(configurationText()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ZPRUSB_SIMULATOR: %s, so there is no simulated printer.\n", error.what());
    }
}

void Simulation::build(Configuration configuration) {
    devices_.clear();
    for (PrinterSetup& setup : configuration.printers) {
        devices_.push_back({std::make_shared<Printer>(std::move(setup)), nullptr});
    }
    for (const Fault& fault : configuration.faults) devices_[fault.printer].printer->faults.add(fault);
    ++generation_;
    rebuilt_.notify_all();
    if (!configuration.timeline.empty()) follow(std::move(configuration.timeline));
}

// In a thread that ends with these printers, and touches nothing that ends with the process.
void Simulation::follow(std::vector<TimedChange> timeline) {
    const auto body = [this, timeline = std::move(timeline), start = Clock::now(), generation = generation_] {
        std::unique_lock lock(mutex_);
        for (const auto& [after, change] : timeline) {
            if (rebuilt_.wait_until(lock, start + after, [&] { return generation_ != generation; })) return;
            if (make(change)) control::notifyDeviceChange();
        }
    };
    startThread(body).detach();
}

DeviceHandle Simulation::open(uint32_t number) {
    // Until the thread ends: it may open again, and its printers change meanwhile.
    thread_local const Reachable reachable;
    const std::lock_guard lock(mutex_);
    if (findOpen(number) != nullptr) return number;
    Device* device = find(number);
    if (device == nullptr || !isPresent(*device->printer)) return noDevice;
    device->session.reset();
    device->session = std::make_unique<Session>(device->printer);
    pipes_.put(number, device->session->takeHostWriteEnd(), device->session->takeHostReadEnd());
    return number;
}

DeviceHandle Simulation::openHandle(uint32_t number) {
    const std::lock_guard lock(mutex_);
    return findOpen(number) != nullptr ? number : noDevice;
}

void Simulation::close(DeviceHandle handle) {
    const std::lock_guard lock(mutex_);
    Device* device = find(handle);
    if (device == nullptr) return;
    device->session.reset();
    pipes_.closeUngiven(handle);
}

std::optional<std::string> Simulation::deviceId(DeviceHandle handle) {
    const std::lock_guard lock(mutex_);
    const Device* device = findOpen(handle);
    if (device == nullptr) return std::nullopt;
    return "MFG:SIMULATED;MDL:RQX5820 SIMULATED;SN:" + device->printer->setup.serial + ";";
}

std::optional<std::string> Simulation::devicePath(DeviceHandle handle) {
    const std::lock_guard lock(mutex_);
    const Device* device = findOpen(handle);
    if (device == nullptr) return std::nullopt;
    const PrinterSetup& setup = device->printer->setup;
    return std::string("\\\\?\\usb#") + (setup.foreign ? foreignDigits : ownDigits) + "#" + setup.serial +
           "#{simulated-printer}";
}

HostPipe Simulation::pipe(DeviceHandle handle, uint8_t number) {
    const std::lock_guard lock(mutex_);
    return findOpen(handle) == nullptr ? control::noPipe : pipes_.give(handle, number);
}

void Simulation::closePipe(HostPipe closed) {
    const std::lock_guard lock(mutex_);
    pipes_.close(closed);
}

void Simulation::configure(const std::string& json) {
    Configuration configuration = parseConfiguration(json);
    const std::lock_guard lock(mutex_);
    build(std::move(configuration));
    for (DeviceHandle handle = 0; handle < control::maximumDevices; ++handle) pipes_.closeUngiven(handle);
}

void Simulation::addFault(const std::string& json) {
    const std::lock_guard lock(mutex_);
    const Fault fault = parseFault(json, devices_.size());
    Printer& printer = *devices_[fault.printer].printer;
    const std::lock_guard printerLock(printer.mutex);
    printer.faults.add(fault);
}

// The lock is held. @return whether devices came or went.
bool Simulation::make(const Change& wanted) {
    Device& device = devices_[wanted.printer];
    change(*device.printer, wanted);
    if (wanted.plugged == false && device.session) device.session->unplug();
    return wanted.plugged.has_value();
}

bool Simulation::apply(const Change& change) {
    {
        const std::lock_guard lock(mutex_);
        if (find(change.printer) == nullptr) return false;
        if (!make(change)) return true;
    }
    control::notifyDeviceChange();
    return true;
}

size_t Simulation::printerCount() {
    const std::lock_guard lock(mutex_);
    return devices_.size();
}

std::shared_ptr<Printer> Simulation::printer(uint32_t number) {
    const std::lock_guard lock(mutex_);
    const Device* device = find(number);
    return device == nullptr ? nullptr : device->printer;
}

Simulation::Device* Simulation::find(DeviceHandle handle) {
    return handle < devices_.size() ? &devices_[handle] : nullptr;
}

Simulation::Device* Simulation::findOpen(DeviceHandle handle) {
    Device* device = find(handle);
    const bool isOpen = device != nullptr && device->session && !device->session->isUnplugged();
    return isOpen ? device : nullptr;
}

}  // namespace simulator
