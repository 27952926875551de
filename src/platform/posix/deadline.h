/// Waiting up to a moment on the monotonic clock, which nobody sets.
#pragma once

#include <pthread.h>

#include <cstdint>
#include <ctime>

namespace platform {

using Moment = int64_t;  // nanoseconds of the monotonic clock
constexpr Moment never = INT64_MAX;

Moment now();

/// @param milliseconds `forever` of platform/thread.h gives `never`.
Moment after(uint32_t milliseconds);

timespec toTimespec(Moment moment);

/// Goes on sleeping when a signal interrupts it.
void sleepUntil(Moment moment);

/// A condition that waitOn() can wait for: by itself it would look at the clock that people set.
void initCondition(pthread_cond_t& condition);

/// As with every condition, what is waited for has to be tested again.
/// @return false when the limit has passed.
bool waitOn(pthread_cond_t& condition, pthread_mutex_t& mutex, Moment limit);

}  // namespace platform
