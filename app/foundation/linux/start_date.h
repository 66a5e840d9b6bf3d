#pragma once

#include "core/foundation/date.h"

#include <cstdint>

namespace loadwarden {

// The date a process started, from its start in clock ticks after boot, to
// the microsecond. Boot is dated once per program, so a process is given the
// same date wherever in the program it is read, and is known by it.
Date startDateFromTicks(std::uint64_t startTicks);

} // namespace loadwarden
