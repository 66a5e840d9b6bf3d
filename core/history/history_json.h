#pragma once

// JSON coding of the usage history; keys are the field names.

#include "core/foundation/json_support.h"
#include "core/history/usage_history.h"

#include <nlohmann/json.hpp>

namespace loadwarden {

// Written out by hand so that the whole numbers are checked, never cast.
void to_json(nlohmann::json& j, const UsageTotals& totals);
void from_json(const nlohmann::json& j, UsageTotals& totals);
void to_json(nlohmann::json& j, const UsageHistory& history);
void from_json(const nlohmann::json& j, UsageHistory& history);

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AppUsage, key, name, totals)

} // namespace loadwarden
