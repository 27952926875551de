#include "deadline.h"

#include <cerrno>

#include "platform/thread.h"

namespace platform {

namespace {

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr int64_t nanosecondsPerMillisecond = 1'000'000;

}  // namespace

timespec toTimespec(Moment moment) {
    return {moment / nanosecondsPerSecond, moment % nanosecondsPerSecond};
}

Moment now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

Moment after(uint32_t milliseconds) {
    return milliseconds == forever ? never : now() + milliseconds * nanosecondsPerMillisecond;
}

void sleepUntil(Moment moment) {
    const timespec end = toTimespec(moment);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}

void initCondition(pthread_cond_t& condition) {
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

bool waitOn(pthread_cond_t& condition, pthread_mutex_t& mutex, Moment limit) {
    if (limit == never) return pthread_cond_wait(&condition, &mutex) == 0;
    const timespec end = toTimespec(limit);
    return pthread_cond_timedwait(&condition, &mutex, &end) == 0;
}

}  // namespace platform
