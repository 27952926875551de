#pragma once

#include <cstdint>
#include <ctime>

namespace usb {

using Nanoseconds = int64_t;
constexpr Nanoseconds millisecond = 1'000'000;
constexpr Nanoseconds never = INT64_MAX;

inline Nanoseconds now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000 * millisecond + time.tv_nsec;
}

}  // namespace usb
