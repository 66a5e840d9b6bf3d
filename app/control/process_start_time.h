#pragma once

#include "core/foundation/date.h"

#include <cstdint>
#include <optional>

namespace loadwarden {

// When a process started, exactly as the kernel keeps it, so that two reads
// of the same process compare equal and a reused pid never does. Nothing when
// the process is gone. macOS: seconds since 1970 with the microseconds of the
// kernel's BSD information. Linux: seconds since boot from the kernel's tick
// count, which no change of the wall clock can move.
std::optional<Date> processStartTime(std::int32_t pid);

// When a process started, dated as a sample dates it (`ProcessRecord::started`),
// so that the process a sample read can be told from a later one with its
// pid. Nothing when the process is gone.
std::optional<Date> processStartDate(std::int32_t pid);

} // namespace loadwarden
