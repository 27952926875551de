#pragma once

#include <atomic>
#include <cstdint>

#include "platform/lock.h"

namespace device {

/// Serialises the entry points, the transfers on worker threads and the handling of device changes. A thread
/// that holds it may enter it again, and has to leave it as often as it entered.
///
/// Threads get it in the order in which they came, but those that own a printer before the others: a printer
/// whose page or exchange is under way doesn't wait long for its next bytes. After some of them in a row it is
/// the turn of one of the others.
///
/// Nobody waits for a printer while holding it: see AwayFromApiLock. So it may be entered before a printer's
/// named mutex is waited for as well as after.
class CAPABILITY("API lock") ApiLock {
public:
    constexpr ApiLock() = default;
    ApiLock(const ApiLock&) = delete;
    ApiLock& operator=(const ApiLock&) = delete;

    void enter() ACQUIRE();

    /// For the handling of device changes: as an owner of a printer. Gives up soon after `stop` has been set.
    /// @return whether the calling thread has the lock now.
    bool enterUnless(const std::atomic<bool>& stop) TRY_ACQUIRE(true);

    void leave() RELEASE();

private:
    friend class AwayFromApiLock;

    struct Waiter {
        explicit Waiter(uint32_t self) : thread(self) {}
        const uint32_t thread;
        bool admitted = false;
        platform::Condition admission;
        Waiter* next = nullptr;
    };

    /// Those who wait, in the order in which they came.
    struct Queue {
        Waiter* first = nullptr;
        void append(Waiter& waiter);
        void remove(Waiter& waiter);
    };

    bool isHeldBy(uint32_t thread) const { return holder_.load(std::memory_order_relaxed) == thread; }
    bool mayEnter(bool privileged) const REQUIRES(gate_);
    void take(uint32_t thread) REQUIRES(gate_);
    void wait(Waiter& waiter, Queue& queue, const std::atomic<bool>* stop) REQUIRES(gate_);
    bool enterAs(uint32_t thread, bool privileged, const std::atomic<bool>* stop);
    bool isTurnOfPrivileged() REQUIRES(gate_);
    void passOn() REQUIRES(gate_);

    platform::Lock gate_;  // a leaf
    // The holder's thread identifier, written with the gate held. Any thread reads it, and can mistake no other
    // one's for its own.
    std::atomic<uint32_t> holder_{0};
    uint32_t depth_ = 0;                      // the holder's own
    uint32_t lenders_ GUARDED_BY(gate_) = 0;  // threads that are away and admit owners of printers only
    uint32_t row_ GUARDED_BY(gate_) = 0;      // privileged threads that were admitted while others waited
    Queue privileged_ GUARDED_BY(gate_);
    Queue others_ GUARDED_BY(gate_);
};

inline constinit ApiLock apiLock;

using HoldingApiLock = platform::Holding<ApiLock>;

/// While it lives, the calling thread is without the lock, however often it had entered it. Does nothing in a
/// thread that doesn't hold it. As it stands in functions that run with the lock and in others that run
/// without, the check of the locks knows nothing of it: nothing that the lock guards is touched in its life.
class AwayFromApiLock {
public:
    /// Who may enter meanwhile. For an operation on an object it is those who have a page open or an exchange
    /// under way, so that nobody else selects, checks or closes anything in the midst of that operation.
    enum class Admitted { ownersOfPrinters, everybody };

    explicit AwayFromApiLock(Admitted admitted);
    ~AwayFromApiLock();
    AwayFromApiLock(const AwayFromApiLock&) = delete;
    AwayFromApiLock& operator=(const AwayFromApiLock&) = delete;

private:
    uint32_t depth_ = 0;  // 0: the thread didn't hold the lock
    Admitted admitted_;
};

}  // namespace device
