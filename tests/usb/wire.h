/// The wire between QEMU and one emulated USB printer, and the printer's endpoints at its end.
#pragma once

#include <usbredirparser.h>

#include <deque>

#include "descriptors.h"
#include "simulated_end.h"

namespace usb_test {

class Wire {
public:
    Wire(const Kind& kind, SimulatedEnd& simulated) : kind_(kind), simulated_(simulated) {}
    ~Wire() { unplug(); }
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    /// @param path of QEMU's socket.
    void plug(const std::string& path);
    void unplug();
    bool isPlugged() const { return link_ >= 0; }

    int link() const { return link_; }
    bool wantsToSend() const;
    bool wantsAnswer() const { return answer_.empty(); }
    bool hasRequests() const { return !outs_.empty(); }

    /// Does what came from QEMU. @return false when QEMU has ended.
    bool receive();

    /// Moves what can be moved between the endpoints and the simulator, and to QEMU.
    /// @return false when QEMU has ended.
    bool move();

    /// @return false when the simulated printer has broken its link.
    bool takeAnswer();

    /// The next packet of an endpoint is refused, and so are those after it until the host clears the halt.
    void stall(uint8_t endpoint) { (endpoint == outEndpoint ? isOutHalted_ : isInHalted_) = true; }

private:
    struct Out {
        uint64_t id;
        Bytes data;
        size_t done = 0;
    };
    struct In {
        uint64_t id;
        size_t length;
    };

    void introduce();
    void setCallbacks();
    void setTransferCallbacks();
    void control(uint64_t id, usb_redir_control_packet_header header);
    Bytes answerControl(const usb_redir_control_packet_header& header, uint8_t& status);
    void bulk(uint64_t id, const usb_redir_bulk_packet_header& header, const uint8_t* data, int length);
    void complete(uint64_t id, uint8_t endpoint, uint8_t status, size_t length, const Bytes& data = {});
    void cancel(uint64_t id);
    void reset();
    bool passOn(Out& out);
    void moveRequests();
    void moveAnswer();

    const Kind kind_;
    SimulatedEnd& simulated_;
    int link_ = -1;
    usbredirparser* parser_ = nullptr;
    std::deque<Out> outs_;
    std::deque<In> ins_;
    Bytes answer_;  // what is left of the answer that the simulator gave last
    bool isOutHalted_ = false;
    bool isInHalted_ = false;
};

}  // namespace usb_test
