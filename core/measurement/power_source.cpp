#include "core/measurement/power_source.h"

#include <algorithm>

namespace loadwarden {

BatteryInfo batteryInfoFromPowerSource(const PowerSourceFigures& figures) {
    const double maximum = figures.maxCapacity.value_or(100.0);
    BatteryInfo battery{
        .percent = maximum > 0.0 ? figures.currentCapacity.value_or(0.0) / maximum : 0.0,
        .charging = figures.isCharging,
        .onBattery = figures.powerSourceState == "Battery Power",
        .cycleCount = figures.cycleCount,
    };
    // The system says -1 while it is still estimating.
    if (figures.minutesToEmpty && *figures.minutesToEmpty >= 1.0) {
        battery.minutesLeft = static_cast<int>(*figures.minutesToEmpty);
    }
    if (figures.rawMaxCapacity && figures.designCapacity && *figures.designCapacity > 0.0) {
        battery.health = std::min(*figures.rawMaxCapacity / *figures.designCapacity, 1.0);
    }
    return battery;
}

} // namespace loadwarden
