/// Puts the printer's packets together again. USB knows no answers, only packets: a short one ends a message,
/// and so does a pause after a full one, as not every device sends an empty packet then.
#pragma once

#include <cstddef>

#include "clock.h"
#include "descriptors.h"

namespace usb {

class Answers {
public:
    /// @param pipe where answers go, one write each, as they are complete.
    void add(const uint8_t* packet, size_t length, bool isFull, int pipe);

    /// When what there is counts as an answer.
    Nanoseconds due() const { return due_; }

    /// What nobody takes is lost.
    void deliver(int pipe);

private:
    static constexpr size_t longestRead = 512;  // of a host
    uint8_t bytes_[longestRead + largestPacket]{};
    size_t length_ = 0;
    Nanoseconds due_ = never;
};

}  // namespace usb
