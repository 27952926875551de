#include "device/api_lock.h"

#include "platform/named_mutex.h"
#include "platform/thread.h"

namespace device {

namespace {

using HoldingGate = platform::Holding<platform::Lock>;

constexpr uint32_t nobody = 0;  // no thread's identifier
constexpr uint32_t stopLookMilliseconds = 20;

}  // namespace

void ApiLock::Queue::append(Waiter& waiter) {
    Waiter** end = &first;
    while (*end != nullptr) end = &(*end)->next;
    *end = &waiter;
}

void ApiLock::Queue::remove(Waiter& waiter) {
    Waiter** link = &first;
    while (*link != &waiter) link = &(*link)->next;
    *link = waiter.next;
}

bool ApiLock::mayEnter(bool privileged) const {
    return holder_ == nobody && (privileged || lenders_ == 0);
}

void ApiLock::take(uint32_t thread) {
    holder_ = thread;
    depth_ = 1;
}

/// With the gate held, and the lock not to be had at once.
void ApiLock::wait(Waiter& waiter, Queue& queue, const std::atomic<bool>* stop) {
    queue.append(waiter);
    while (!waiter.admitted && (stop == nullptr || !*stop)) {
        waiter.admission.wait(gate_, stop == nullptr ? platform::forever : stopLookMilliseconds);
    }
    if (!waiter.admitted) queue.remove(waiter);
}

bool ApiLock::enterAs(uint32_t thread, bool privileged, const std::atomic<bool>* stop) {
    const HoldingGate gate(gate_);
    if (mayEnter(privileged)) {
        take(thread);
        return true;
    }
    Waiter waiter(thread);
    wait(waiter, privileged ? privileged_ : others_, stop);
    return waiter.admitted;
}

/// Admits the next one, with the gate held.
void ApiLock::passOn() {
    Queue& queue = privileged_.first != nullptr ? privileged_ : others_;
    Waiter* next = queue.first;
    holder_ = nobody;
    if (next == nullptr || !mayEnter(&queue == &privileged_)) return;
    queue.remove(*next);
    take(next->thread);
    next->admitted = true;
    next->admission.wakeOne();
}

void ApiLock::enter() {
    const uint32_t self = platform::currentThreadId();
    if (isHeldBy(self)) {
        ++depth_;
    } else {
        enterAs(self, platform::threadOwnsNamedMutex(), nullptr);
    }
}

bool ApiLock::enterUnless(const std::atomic<bool>& stop) {
    return enterAs(platform::currentThreadId(), false, &stop);
}

void ApiLock::leave() {
    if (--depth_ > 0) return;
    const HoldingGate gate(gate_);
    passOn();
}

AwayFromApiLock::AwayFromApiLock(Admitted admitted) : admitted_(admitted) {
    if (!apiLock.isHeldBy(platform::currentThreadId())) return;
    depth_ = apiLock.depth_;
    const HoldingGate gate(apiLock.gate_);
    if (admitted_ == Admitted::ownersOfPrinters) ++apiLock.lenders_;
    apiLock.passOn();
}

AwayFromApiLock::~AwayFromApiLock() {
    if (depth_ == 0) return;
    // Whoever admitted owners only comes back as one of them.
    const bool lent = admitted_ == Admitted::ownersOfPrinters;
    apiLock.enterAs(platform::currentThreadId(), lent, nullptr);
    const HoldingGate gate(apiLock.gate_);
    if (lent) --apiLock.lenders_;
    apiLock.depth_ = depth_;
}

}  // namespace device
