/// A printer at work, from the opening of its device to the closing: a thread that reads requests and image
/// data, answers, and misbehaves where it is told to.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <thread>

#include "commands.h"
#include "common/channel.h"
#include "printer.h"
#include "remote.h"
#include "request_stream.h"

namespace simulator {

using control::HostPipe;

class Session {
public:
    /// @throws std::system_error when the system gives no more pipes or threads.
    explicit Session(std::shared_ptr<Printer> printer);
    ~Session() { stop(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    HostPipe takeHostWriteEnd() { return channel_.takeHostWriteEnd(); }
    HostPipe takeHostReadEnd() { return channel_.takeHostReadEnd(); }

    bool isUnplugged() const { return unplugged_; }

    /// The printer has been unplugged by somebody else: waits until its thread has ended.
    void unplug();

private:
    void stop();
    void run();
    bool serve(const Bytes& request);
    bool send(Answer answer, const std::optional<Fault>& fault);
    bool takeData(const DataTransfer& transfer);
    bool interruptData(const Fault& fault);
    void breakLink(const Fault& fault);

    const Reachable reachable_;
    const std::shared_ptr<Printer> printer_;
    control::Channel channel_;
    RequestStream input_{channel_};
    std::atomic<bool> unplugged_ = false;
    std::thread thread_;
};

}  // namespace simulator
