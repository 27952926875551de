/// The simulator's side of an emulated USB printer: a control library that is loaded by its path, and the two
/// pipes of its first printer.
#pragma once

#include <cstdint>
#include <string>

namespace usb_test {

class SimulatedEnd {
public:
    /// @throws std::runtime_error when the file is no control library.
    explicit SimulatedEnd(const std::string& library);

    bool start();  // false while the simulated printer is unplugged
    void stop();
    bool isStarted() const { return requests_ >= 0; }

    int requests() const { return requests_; }  // doesn't block
    int answers() const { return answers_; }

private:
    uint64_t (*open_)(uint32_t);
    void (*close_)(uint64_t);
    uint64_t (*pipe_)(uint64_t, uint32_t, uint8_t, uint32_t);
    void (*closePipe_)(uint64_t);
    uint64_t device_ = 0;
    int requests_ = -1;
    int answers_ = -1;
};

}  // namespace usb_test
