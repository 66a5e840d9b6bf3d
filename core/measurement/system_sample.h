#pragma once

#include "core/foundation/hashing.h"
#include "core/measurement/battery.h"
#include "core/measurement/cpu.h"
#include "core/measurement/memory.h"
#include "core/measurement/thermal.h"

#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

namespace loadwarden {

// One system-wide measurement. Fractions are 0..1; rates are per second.
struct SystemSample {
    std::vector<double> coreUsage;
    std::vector<CoreKind> coreKinds;
    MemoryStats memory;
    std::optional<double> gpu;
    double diskReadPerSecond = 0.0;
    double diskWritePerSecond = 0.0;
    double networkInPerSecond = 0.0;
    double networkOutPerSecond = 0.0;
    std::optional<BatteryInfo> battery;
    ThermalLevel thermal = ThermalLevel::nominal;
    bool lowPowerMode = false;
    double uptime = 0.0;
    std::optional<std::uint64_t> diskFree;
    std::optional<std::uint64_t> diskTotal;

    // Mean of every core: 1.0 means the whole processor is busy.
    double cpu() const;

    bool operator==(const SystemSample&) const = default;
    auto fields() const {
        return std::tie(coreUsage, coreKinds, memory, gpu, diskReadPerSecond, diskWritePerSecond,
                        networkInPerSecond, networkOutPerSecond, battery, thermal, lowPowerMode,
                        uptime, diskFree, diskTotal);
    }
};

} // namespace loadwarden
