#include "platform/local_time.h"

#include "system.h"

namespace platform {

LocalTime localTime() {
    SYSTEMTIME time;
    GetLocalTime(&time);
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds};
}

}  // namespace platform
