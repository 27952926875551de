#pragma once

namespace platform {

struct LocalTime {
    int year;
    int month;  // 1 to 12
    int day;
    int hour;
    int minute;
    int second;
    int millisecond;
};

/// The time of day where the machine stands.
LocalTime localTime();

}  // namespace platform
