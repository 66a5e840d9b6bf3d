#pragma once

#include "core/foundation/calendar.h"

namespace loadwarden {

// The calendar in the user's time zone, daylight saving time included.
Calendar localCalendar();

} // namespace loadwarden
