#include "patience.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include "program.h"
#include "steps.h"
#include "system.h"
#include "text.h"

namespace tool {
namespace {

constexpr auto slice = std::chrono::milliseconds(50);
constexpr auto graceAfterInterruption = std::chrono::seconds(2);

bool noticeShown = false;
bool callsAreTold = false;

/// A page belongs to the thread that started it, so one thread makes all calls. It is never joined: it may be
/// in a call that does not end.
class LibraryThread {
public:
    static LibraryThread& instance() {
        static auto* thread = new LibraryThread;
        return *thread;
    }

    void start(const std::function<void()>& call) {
        const std::lock_guard lock(mutex_);
        call_ = &call;
        changed_.notify_all();
    }

    bool endsWithin(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, time, [this] { return call_ == nullptr; });
    }

private:
    LibraryThread() {
        std::thread([this] { work(); }).detach();
    }

    [[noreturn]] void work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return call_ != nullptr; });
            lock.unlock();
            (*call_)();
            lock.lock();
            call_ = nullptr;
            changed_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    const std::function<void()>* call_ = nullptr;
};

}  // namespace

WaitingNotice::WaitingNotice(std::string what) : what_(std::move(what)), isInner_(noticeShown) {
    noticeShown = true;
}

WaitingNotice::~WaitingNotice() {
    if (isInner_) return;
    noticeShown = false;
    if (shownSeconds_ > 0) endWaitingLine();
}

void WaitingNotice::update() {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
    if (isInner_ || seconds == shownSeconds_) return;
    const bool first = shownSeconds_ == 0;
    shownSeconds_ = static_cast<long>(seconds);
    showWaiting(what_, shownSeconds_, first);
}

void callPatiently(const Patience& patience, const std::function<void()>& call) {
    LibraryThread& thread = LibraryThread::instance();
    WaitingNotice notice(patience.what);
    std::optional<Clock::time_point> interruption;
    thread.start(call);
    while (!thread.endsWithin(slice)) {
        notice.update();
        if (patience.until && Clock::now() > *patience.until) leaveProgram(patience.tooLong());
        if (!patience.interrupted || !interruptedWithin(std::chrono::milliseconds(0))) continue;
        if (!interruption) interruption = Clock::now();
        if (Clock::now() - *interruption > graceAfterInterruption) leaveProgram(patience.interrupted());
    }
}

void tellCalls() {
    callsAreTold = true;
}

uint32_t callLibrary(const Patience& patience, const std::string& text, uint16_t& code,
                     const std::function<uint32_t(uint16_t*)>& call) {
    uint32_t verdict = 0;
    const auto start = Clock::now();
    callPatiently(patience, [&] { verdict = call(&code); });
    if (callsAreTold) {
        const std::chrono::duration<double, std::milli> time = Clock::now() - start;
        complain(text + " = " + std::to_string(verdict) + ", code " + std::to_string(code) + ", " +
                 decimal(time.count()) + " ms");
    }
    return verdict;
}

}  // namespace tool
