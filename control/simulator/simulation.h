/// All simulated printers of the process, and which of them are open.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "common/host_pipes.h"
#include "configuration.h"
#include "session.h"

namespace simulator {

using control::DeviceHandle;
using control::noDevice;

class Simulation {
public:
    /// The first call reads the file named by ZPRUSB_SIMULATOR. A process that just ends never destroys it, as
    /// printers may still be at work.
    static Simulation& instance();

    DeviceHandle open(uint32_t number);
    DeviceHandle openHandle(uint32_t number);
    void close(DeviceHandle handle);
    std::optional<std::string> devicePath(DeviceHandle handle);
    std::optional<std::string> deviceId(DeviceHandle handle);
    HostPipe pipe(DeviceHandle handle, uint8_t number);
    void closePipe(HostPipe pipe);

    /// @throws ConfigurationError, and nothing has changed.
    void configure(const std::string& json);
    void addFault(const std::string& json);

    /// @return false when there is no such printer.
    bool apply(const Change& change);

    size_t printerCount();

    /// @return null when there is no such printer.
    std::shared_ptr<Printer> printer(uint32_t number);

private:
    struct Device {
        std::shared_ptr<Printer> printer;
        std::unique_ptr<Session> session;  // while it is open
    };

    Simulation();
    void build(Configuration configuration);
    void follow(std::vector<TimedChange> timeline);
    bool make(const Change& change);
    Device* find(DeviceHandle handle);
    Device* findOpen(DeviceHandle handle);

    std::mutex mutex_;
    std::condition_variable rebuilt_;
    uint64_t generation_ = 0;  // how often the printers were set up
    std::vector<Device> devices_;
    control::HostPipes pipes_;
};

}  // namespace simulator
