#pragma once

// JSON coding of the diagnosis and alert types; keys are the field names.

#include "core/diagnosis/alert.h"
#include "core/diagnosis/explainer.h"
#include "core/foundation/json_support.h"
#include "core/grouping/process_group_json.h"

namespace loadwarden {

// Settings decode all or nothing: a missing key is an error, so a damaged
// value falls back to the defaults as a whole.
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AlertSettings, hotEnabled, hotPercent, hotMinutes, leakEnabled,
                                   stuckEnabled, stuckSeconds, repeatMinutes)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(AppAlert, kind, key, name, amount, detail, date)

// A fix that acts on no app has a null key.
void to_json(nlohmann::json& j, const Cause::Fix& fix);
void from_json(const nlohmann::json& j, Cause::Fix& fix);

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ExplainerApp, key, name, kind, cpuPercent,
                                                memoryBytes, energyWatts, diskBytesPerSecond,
                                                helperCount, canQuit, canPause, notResponding,
                                                leakGrowth, processName, isSelf)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Cause, kind, score, appKey, appName, value, extra,
                                                pressureHigh, fix)

} // namespace loadwarden
