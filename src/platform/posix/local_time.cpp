#include "platform/local_time.h"

#include <ctime>

namespace platform {

LocalTime localTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm time{};
    localtime_r(&now.tv_sec, &time);
    return {time.tm_year + 1900,
            time.tm_mon + 1,
            time.tm_mday,
            time.tm_hour,
            time.tm_min,
            time.tm_sec,
            static_cast<int>(now.tv_nsec / 1'000'000)};
}

}  // namespace platform
