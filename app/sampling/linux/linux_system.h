#pragma once

#include "app/sampling/sampler_backend.h"
#include "core/measurement/linux/core_topology.h"
#include "core/measurement/linux/thermal_zones.h"

#include <map>
#include <string>
#include <vector>

namespace loadwarden {

// System-wide figures from /proc and /sys. Holds what must be compared from
// one reading to the next (pressure level, throttle counters) and what never
// changes while the machine runs (core kinds, thermal trips, device kinds).
class LinuxSystem {
public:
    LinuxSystem();

    ProcessorReading processors();
    MemoryStats memory();
    std::optional<ByteCounters> diskCounters();
    std::optional<ByteCounters> interfaceCounters();
    std::optional<BatteryInfo> battery() const;
    ThermalLevel thermal();
    bool lowPowerMode() const;
    Seconds uptime() const;
    std::optional<DiskSpace> diskSpace() const;

private:
    struct Zone {
        std::string temperaturePath;
        std::vector<ThermalZone::Trip> trips;
    };

    bool isPhysicalDisk(const std::string& name);
    bool hasDevice(const std::string& interface);
    std::uint64_t throttleCount() const;

    CoreTopology topology_;
    std::vector<Zone> zones_;
    std::vector<std::string> throttleCounters_;
    std::vector<std::string> zramStats_;
    std::optional<std::uint64_t> lastThrottleCount_;
    MemoryPressure pressure_ = MemoryPressure::normal;
    std::uint64_t physicalMemory_ = 0;
    std::map<std::string, bool, std::less<>> physicalDisks_;
    std::map<std::string, bool, std::less<>> interfacesWithDevice_;
    std::string buffer_;
};

} // namespace loadwarden
