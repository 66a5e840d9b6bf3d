#pragma once

#include "core/measurement/thermal.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// One /sys/class/thermal zone: its temperature and trip points in °C.
struct ThermalZone {
    struct Trip {
        std::string type; // "passive", "hot", "critical"; "active" trips start fans
        double celsius = 0.0;
    };
    double celsius = 0.0;
    std::vector<Trip> trips;
};

// Linux has no thermal state of its own; this one is read off how close the
// hottest zone is to the trips where the kernel slows the processor down
// (passive) or shuts down (hot, critical). throttled: the processor's
// throttle counters grew since the previous reading.
ThermalLevel thermalLevelFromZones(const std::vector<ThermalZone>& zones, bool throttled);

// A sysfs temperature in millidegrees Celsius.
std::optional<double> parseMillidegrees(std::string_view text);

} // namespace loadwarden
