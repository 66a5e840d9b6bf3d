#pragma once

// JSON coding of the measurement types; keys are the field names. Decoding
// tolerates missing keys (they keep their defaults) and rejects wrong types.

#include "core/foundation/json_support.h"
#include "core/measurement/network_bytes.h"
#include "core/measurement/process_record.h"
#include "core/measurement/sampling_plan.h"
#include "core/measurement/series.h"
#include "core/measurement/system_sample.h"

namespace loadwarden {

void to_json(nlohmann::json& j, MemoryPressure pressure);
void from_json(const nlohmann::json& j, MemoryPressure& pressure);

void to_json(nlohmann::json& j, const Series& series);
void from_json(const nlohmann::json& j, Series& series);

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(CPUTicks, user, system, idle, nice)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(MemoryStats, total, app, wired, compressed, cached,
                                                swapUsed, swapTotal, pressure)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(BatteryInfo, percent, charging, onBattery,
                                                minutesLeft, cycleCount, health)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(SystemSample, coreUsage, coreKinds, memory, gpu,
                                                diskReadPerSecond, diskWritePerSecond,
                                                networkInPerSecond, networkOutPerSecond, battery,
                                                thermal, lowPowerMode, uptime, diskFree, diskTotal)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ProcessRecord, pid, ppid, responsiblePID, uid, user,
                                                name, path, started, isOwn, cpuTimeNs, memoryBytes,
                                                diskReadBytes, diskWrittenBytes, energyNJ, threads,
                                                state, arch, appID, isSystemService)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(ProcessRates, cpuPercent, diskBytesPerSecond,
                                                energyWatts, networkInPerSecond,
                                                networkOutPerSecond, gpuPercent)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(LiveProcess, record, rates)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(NetworkBytes, pid, name, bytesIn, bytesOut)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(SamplingPlan, windowVisible, networkShown, interval)

} // namespace loadwarden
