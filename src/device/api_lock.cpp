#include "device/api_lock.h"

#include "platform/named_mutex.h"
#include "platform/thread.h"

namespace device {

namespace {

using HoldingGate = platform::Holding<platform::Lock>;

constexpr uint32_t nobody = 0;  // no thread's identifier
constexpr uint32_t stopLookMilliseconds = 20;
constexpr uint32_t longestRow = 32;  // of privileged threads, while others wait

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

/// For a thread that may not enter at once.
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

/// Whose turn it is. Owners of printers that never pause don't keep the others out for ever.
bool ApiLock::isTurnOfPrivileged() {
    const bool othersCould = others_.first != nullptr && lenders_ == 0;
    const bool isTheirs = privileged_.first != nullptr && !(othersCould && row_ >= longestRow);
    row_ = isTheirs && othersCould ? row_ + 1 : 0;
    return isTheirs;
}

/// Admits the next one.
void ApiLock::passOn() {
    holder_ = nobody;
    const bool privileged = isTurnOfPrivileged();
    Queue& queue = privileged ? privileged_ : others_;
    Waiter* next = queue.first;
    if (next == nullptr || !mayEnter(privileged)) return;
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
    return enterAs(platform::currentThreadId(), true, &stop);
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
    apiLock.enterAs(platform::currentThreadId(), lent || platform::threadOwnsNamedMutex(), nullptr);
    const HoldingGate gate(apiLock.gate_);
    if (lent) --apiLock.lenders_;
    apiLock.depth_ = depth_;
}

}  // namespace device
