#pragma once

// JSON coding of the usage history; keys are the field names.

#include "core/foundation/json_support.h"
#include "core/history/usage_history.h"

#include <nlohmann/json.hpp>

namespace loadwarden {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(UsageTotals, cpuSeconds, peakMemory, energyJoules,
                                   networkBytes, seenSeconds)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AppUsage, key, name, totals)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(UsageHistory, version, days)

} // namespace loadwarden
