#include "pump.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <new>
#include <utility>

#include "common/device_change.h"
#include "common/posix/blocked_signals.h"

namespace usb {
namespace {

constexpr Nanoseconds quietPause = 5 * millisecond;  // what comes so soon after taking was meant for another
constexpr Nanoseconds acquirePatience = 8000 * millisecond;  // below the host's 10 s for a request
constexpr Nanoseconds retryPause = 10 * millisecond;
constexpr Nanoseconds brokenPause = 100 * millisecond;
constexpr Nanoseconds takeBackPatience = 1000 * millisecond;

}  // namespace

Pump* Pump::start(DeviceHandle device, const ConnectedPrinter& printer) {
    void* place = std::malloc(sizeof(Pump));
    if (place == nullptr) return nullptr;
    Pump* pump = new (place) Pump(device, printer);
    if (pump->prepare(printer) && pump->startThread()) return pump;
    pump->~Pump();
    std::free(place);
    return nullptr;
}

bool Pump::prepare(const ConnectedPrinter& printer) {
    if (!node_.open(printer) || !channel_.make(control::RequestPipe::oneTransfer)) return false;
    if (!control::makeRequestPipe(control::RequestPipe::oneTransfer, copyReader_, copyWriter_)) return false;
    putHostEnds(device_, std::move(channel_.hostWrite), std::move(channel_.hostRead));
    return true;
}

bool Pump::startThread() {
    const control::BlockedSignals blocked;
    const auto body = [](void* pump) -> void* {
        static_cast<Pump*>(pump)->run();
        return nullptr;
    };
    if (pthread_create(&thread_, nullptr, body, this) == 0) return true;
    closeUngivenHostEnds(device_);
    return false;
}

void Pump::stop() {
    closing_ = true;
    eventfd_write(channel_.wake.get(), 1);
    if (process_ == getpid()) pthread_join(thread_, nullptr);  // the child of a fork has no such thread
    this->~Pump();
    std::free(this);
}

void Pump::run() {
    while (step()) {
    }
    node_.discard(out_);
    if (isHolding_) letGo();
    if (gone_) endLink();
}

// The host's transfers fail from now on.
void Pump::endLink() {
    channel_.requests.close();
    channel_.answers.close();
    control::notifyDeviceChange();
}

// Whether the thread goes on.
bool Pump::step() {
    const bool requestWaits = waitForWork();
    reapAll();  // after the look at the requests: whoever took the interface did so before the host wrote
    if (gone_ || closing_) return false;
    if (isLost_) letGo();
    if (now() >= answers_.due()) answers_.deliver(channel_.answers.get());
    if (now() >= repairAt_) repairRequests();
    if (requestWaits) serveRequest();
    return true;
}

// @return whether there is a request that is not on its way yet.
bool Pump::waitForWork() {
    const bool looksForRequests = !isAcquiring() && !out_.isUnderWay && !hostIsGone_;
    pollfd polled[] = {{channel_.wake.get(), POLLIN, 0},
                       {looksForRequests ? channel_.requests.get() : -1, POLLIN, 0},
                       {node_.descriptor(), POLLOUT, 0}};
    const Nanoseconds wake = wakeTime();
    const Nanoseconds rest = std::max<Nanoseconds>(wake - now(), 0);
    const timespec limit{rest / (1000 * millisecond), rest % (1000 * millisecond)};
    if (ppoll(polled, std::size(polled), wake == never ? nullptr : &limit, nullptr) < 0) return isAcquiring();
    if ((polled[2].revents & (POLLHUP | POLLERR)) != 0) gone_ = true;
    if ((polled[1].revents & (POLLHUP | POLLIN)) == POLLHUP) hostIsGone_ = true;
    return isAcquiring() || (polled[1].revents & POLLIN) != 0;
}

Nanoseconds Pump::wakeTime() const {
    return std::min({answers_.due(), repairAt_, isAcquiring() ? std::max(retryAt_, quietUntil_) : never});
}

void Pump::serveRequest() {
    if (!isAcquiring()) acquireLimit_ = now() + acquirePatience;
    if (!isHolding_ && now() >= retryAt_) acquire();
    if (isHolding_ && now() >= quietUntil_) submitRequest();
    if (now() >= acquireLimit_) refuseRequest();
}

void Pump::acquire() {
    if (claim()) return hold();
    retryAt_ = now() + retryPause;
}

bool Pump::claim() {
    const Claim outcome = node_.claim();
    if (outcome == Claim::gone) gone_ = true;
    if (outcome != Claim::busy) return outcome == Claim::done;
    if (!node_.isUsedByProgram()) return node_.takeFromDriver();
    return mark_.isSetElsewhere() && node_.takeFromProgram();
}

void Pump::hold() {
    isHolding_ = true;
    mark_.set();
    quietUntil_ = now() + quietPause;
    for (Transfer& transfer : in_) askAgain(transfer);
}

void Pump::letGo() {
    for (Transfer& transfer : in_) node_.discard(transfer);
    isHolding_ = false;  // none of them is asked for again
    const auto isUnderWay = [](const Transfer& transfer) { return transfer.isUnderWay; };
    const Nanoseconds limit = now() + takeBackPatience;
    while (std::any_of(std::begin(in_), std::end(in_), isUnderWay) && now() < limit && !gone_) {
        pollfd polled{node_.descriptor(), POLLOUT, 0};
        poll(&polled, 1, static_cast<int>(takeBackPatience / millisecond));
        if ((polled.revents & (POLLHUP | POLLERR)) != 0) gone_ = true;
        reapAll();
    }
    answers_.deliver(channel_.answers.get());
    node_.release();
    mark_.remove();
    isLost_ = false;
}

// The packet stays in the pipe, and the host waits for it.
void Pump::submitRequest() {
    const int requests = channel_.requests.get();
    const ssize_t copied = tee(requests, copyWriter_.get(), sizeof out_.buffer, SPLICE_F_NONBLOCK);
    const ssize_t length = copied > 0 ? read(copyReader_.get(), out_.buffer, sizeof out_.buffer) : 0;
    if (length > 0 && !node_.submitOut(out_, static_cast<size_t>(length))) return letGo();
    acquireLimit_ = never;
}

// The host's write fails. The pipe stays broken for long enough that the host sees it, even where it has just
// begun to wait.
void Pump::refuseRequest() {
    acquireLimit_ = never;
    channel_.requests.close();
    repairAt_ = now() + brokenPause;
}

// The host's next write finds a pipe that is whole again.
void Pump::repairRequests() {
    repairAt_ = never;
    control::Descriptor reader, writer;
    const bool made = control::makeRequestPipe(control::RequestPipe::oneTransfer, reader, writer);
    if (made && replaceHostWriteEnd(device_, writer)) channel_.requests = std::move(reader);
}

void Pump::reapAll() {
    while (Transfer* transfer = node_.reap()) {
        if (transfer == &out_) {
            completeOut();
        } else {
            completeIn(*transfer);
        }
    }
}

void Pump::completeOut() {
    if (out_.status == 0) {
        (void)!read(channel_.requests.get(), out_.buffer, sizeof out_.buffer);  // the host's write is over
        return;
    }
    if (out_.status == -EPIPE) {
        node_.clearHalt(out_);
    } else {
        isLost_ = true;
    }
    refuseRequest();
}

void Pump::completeIn(Transfer& transfer) {
    const bool isFull = transfer.length == transfer.size;
    if (now() >= quietUntil_) answers_.add(transfer.buffer, transfer.length, isFull, channel_.answers.get());
    if (transfer.length > 0) hasStalled_ = false;
    if (transfer.status == -EPIPE && !std::exchange(hasStalled_, true)) {
        node_.clearHalt(transfer);
    } else if (transfer.status != 0) {
        isLost_ = true;
    }
    askAgain(transfer);
}

void Pump::askAgain(Transfer& transfer) {
    if (isHolding_ && !isLost_ && !node_.submitIn(transfer)) isLost_ = true;
}

}  // namespace usb
