/// One open printer: a thread that moves the bytes between the pipes to the host and the printer's endpoints.
///
/// The host's write is over when the printer has taken the bytes: the request pipe has room for one packet,
/// which stays in it until its transfer has ended, and the host waits until there is room again.
///
/// Opening claims nothing. Who writes has, by the host's own reservation, the printer to itself, and nobody
/// else has anything under way: so the first bytes of a request take the interface, also from another process
/// of this library, and it is kept until another one takes it. A foreign program's is waited for.
#pragma once

#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "answers.h"
#include "common/posix/channel_ends.h"
#include "host_ends.h"
#include "mark.h"
#include "node.h"

namespace usb {

class Pump {
public:
    /// @return null when the printer can't be opened or the system gives no more pipes or threads.
    static Pump* start(DeviceHandle device, const ConnectedPrinter& printer);

    /// Ends the thread and everything else of it; what the printer hasn't taken by now is lost.
    void stop();

    /// In the child of a fork too: its parent has the thread.
    bool isGone() const { return gone_ || process_ != getpid() || node_.isGone(); }

private:
    Pump(DeviceHandle device, const ConnectedPrinter& printer) : device_(device), mark_(printer) {}
    bool prepare(const ConnectedPrinter& printer);
    bool startThread();
    void run();
    bool step();
    bool waitForWork();
    Nanoseconds wakeTime() const;
    bool isAcquiring() const { return acquireLimit_ != never; }
    void serveRequest();
    void acquire();
    bool claim();
    void hold();
    void letGo();
    void submitRequest();
    void refuseRequest();
    void repairRequests();
    void reapAll();
    void completeOut();
    void completeIn(Transfer& transfer);
    void askAgain(Transfer& transfer);
    void endLink();

    const DeviceHandle device_;
    const pid_t process_ = getpid();
    Node node_;
    control::ChannelEnds channel_;
    control::Descriptor copyReader_, copyWriter_;  // for the packet that is on its way
    std::atomic<bool> gone_{false};
    std::atomic<bool> closing_{false};
    pthread_t thread_{};

    // From here on the thread's own.
    Mark mark_;
    Answers answers_;
    Transfer out_;
    Transfer in_[4];
    bool isHolding_ = false;
    bool isLost_ = false;      // the interface has been taken away, or the printer doesn't answer on it
    bool hasStalled_ = false;  // since the last bytes came
    bool hostIsGone_ = false;
    Nanoseconds acquireLimit_ = never;  // of the request that waits until it can be sent
    Nanoseconds quietUntil_ = 0;        // after taking the interface
    Nanoseconds retryAt_ = 0;
    Nanoseconds repairAt_ = never;  // of the request pipe
};

}  // namespace usb
