#pragma once

#include <condition_variable>
#include <mutex>

/// As std::latch, whose waiting threads GCC 12 sometimes forgets to wake on Windows.
class Latch {
public:
    explicit Latch(int count) : count_(count) {}

    void countDown() {
        const std::lock_guard lock(mutex_);
        if (--count_ == 0) reached_.notify_all();
    }
    void wait() {
        std::unique_lock lock(mutex_);
        reached_.wait(lock, [&] { return count_ <= 0; });
    }

private:
    std::mutex mutex_;
    std::condition_variable reached_;
    int count_;  // guarded by mutex_
};
