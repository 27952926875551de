/// A handle of the system that is closed with its owner.
#pragma once

#include <windows.h>

#include <utility>

namespace control {

class Handle {
public:
    explicit Handle(HANDLE value = INVALID_HANDLE_VALUE) : value_(value) {}
    Handle(Handle&& other) noexcept : value_(other.release()) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Handle() { close(); }

    HANDLE get() const { return value_; }
    HANDLE release() { return std::exchange(value_, INVALID_HANDLE_VALUE); }
    void close() {
        if (value_ != INVALID_HANDLE_VALUE) CloseHandle(release());
    }

private:
    HANDLE value_;
};

}  // namespace control
