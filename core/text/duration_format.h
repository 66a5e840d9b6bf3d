#pragma once

#include "core/foundation/date.h"

#include <string>

namespace loadwarden {

// Abbreviated duration of at most two units, largest first and truncated:
// "1h 5m", "2d 3h", "4m 30s". From an hour up it speaks in days, hours and
// minutes, below that in minutes and seconds. Negative spans count as 0.
std::string abbreviatedDuration(Seconds seconds);

} // namespace loadwarden
