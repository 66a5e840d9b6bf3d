#pragma once

#include "app/sampling/sampler_backend.h"

#include <mach/mach_types.h>

namespace loadwarden {

// System-wide figures from the host statistics, system settings, the IOKit
// registry and the power sources.
class DarwinSystem {
public:
    DarwinSystem();
    ~DarwinSystem();
    DarwinSystem(const DarwinSystem&) = delete;
    DarwinSystem& operator=(const DarwinSystem&) = delete;

    ProcessorReading processors() const;
    MemoryStats memory() const;
    std::optional<ByteCounters> diskCounters() const;
    std::optional<ByteCounters> interfaceCounters() const;
    std::optional<BatteryInfo> battery() const;
    ThermalLevel thermal() const;
    bool lowPowerMode() const;
    Seconds uptime() const;
    std::optional<DiskSpace> diskSpace() const;

private:
    host_t host_;          // a send right of ours, given back on destruction
    int performanceCores_; // logical cores per performance level; 0 on Intel
    int efficiencyCores_;
};

} // namespace loadwarden
