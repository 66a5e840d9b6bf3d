#pragma once

#include "core/measurement/battery.h"

#include <optional>
#include <string>

namespace loadwarden {

// What macOS says about its internal battery: the power source's
// description ("Current Capacity", "Max Capacity", "Time to Empty",
// "Is Charging", "Power Source State") and the smart battery's registry
// entry ("CycleCount", "AppleRawMaxCapacity", "DesignCapacity").
struct PowerSourceFigures {
    std::optional<double> currentCapacity;
    std::optional<double> maxCapacity;
    std::optional<double> minutesToEmpty;
    bool isCharging = false;
    std::string powerSourceState;
    std::optional<int> cycleCount;
    std::optional<double> rawMaxCapacity;
    std::optional<double> designCapacity;
};

BatteryInfo batteryInfoFromPowerSource(const PowerSourceFigures& figures);

} // namespace loadwarden
