/// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace control {

class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    int release() { return std::exchange(number_, -1); }
    void close() {
        if (number_ >= 0) ::close(release());
    }

private:
    int number_;
};

}  // namespace control
