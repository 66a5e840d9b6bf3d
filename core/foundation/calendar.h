#pragma once

#include "core/foundation/date.h"

#include <functional>
#include <string>

namespace loadwarden {

struct CalendarDay {
    int year = 1970;
    unsigned month = 1;
    unsigned day = 1;

    bool operator==(const CalendarDay&) const = default;
};

// The Gregorian calendar in the user's time zone, whose offset from UTC the
// caller gives for each date (it moves with daylight saving time). Days are
// counted on the calendar, so "a day earlier" is the previous date whatever
// the length of that day.
struct Calendar {
    std::function<Seconds(Date)> utcOffset; // seconds east of UTC in effect at a date

    static Calendar fixedOffset(Seconds offset);

    // The local date of `date`, moved by `addingDays` calendar days.
    CalendarDay day(Date date, int addingDays = 0) const;
    // The same as "YYYY-MM-DD", which sorts as text in date order.
    std::string dayKey(Date date, int addingDays = 0) const;
};

} // namespace loadwarden
