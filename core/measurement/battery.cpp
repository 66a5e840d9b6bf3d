#include "core/measurement/battery.h"

#include "core/text/duration_format.h"

#include <algorithm>

namespace loadwarden {

std::string batteryStatusLine(const std::optional<BatteryInfo>& battery) {
    if (!battery) {
        return "";
    }
    if (battery->charging) {
        return "Charging";
    }
    if (!battery->onBattery) {
        return "On power adapter";
    }
    if (battery->minutesLeft) {
        return abbreviatedDuration(std::max(*battery->minutesLeft, 0) * 60.0) + " left";
    }
    return "On battery";
}

} // namespace loadwarden
