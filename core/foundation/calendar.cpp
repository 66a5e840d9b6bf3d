#include "core/foundation/calendar.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace loadwarden {

Calendar Calendar::fixedOffset(Seconds offset) {
    return Calendar{[offset](Date) { return offset; }};
}

CalendarDay Calendar::day(Date date, int addingDays) const {
    using namespace std::chrono;
    const double local = date + utcOffset(date);
    const sys_days midnight{days{static_cast<days::rep>(std::floor(local / 86400.0))}};
    const year_month_day ymd{midnight + days{addingDays}};
    return {static_cast<int>(ymd.year()), static_cast<unsigned>(ymd.month()),
            static_cast<unsigned>(ymd.day())};
}

std::string Calendar::dayKey(Date date, int addingDays) const {
    const CalendarDay local = day(date, addingDays);
    char key[32];
    std::snprintf(key, sizeof key, "%04d-%02u-%02u", local.year, local.month, local.day);
    return key;
}

} // namespace loadwarden
