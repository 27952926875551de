#include "answers.h"

#include <unistd.h>

#include <cstring>

namespace usb {
namespace {

constexpr Nanoseconds longestGap = 20 * millisecond;  // between two packets of one answer

}  // namespace

void Answers::add(const uint8_t* packet, size_t length, bool isFull, int pipe) {
    std::memcpy(bytes_ + length_, packet, length);
    length_ += length;
    if (!isFull || length_ >= longestRead) return deliver(pipe);
    due_ = now() + longestGap;
}

void Answers::deliver(int pipe) {
    if (length_ > 0) (void)!write(pipe, bytes_, length_);
    length_ = 0;
    due_ = never;
}

}  // namespace usb
