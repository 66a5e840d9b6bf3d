#pragma once

#include "core/foundation/hashing.h"

#include <optional>
#include <string>
#include <tuple>

namespace loadwarden {

struct BatteryInfo {
    double percent = 0.0; // charge as a fraction 0..1
    bool charging = false;
    bool onBattery = false;
    std::optional<int> minutesLeft;
    std::optional<int> cycleCount;
    std::optional<double> health; // full capacity as a fraction of design capacity

    bool operator==(const BatteryInfo&) const = default;
    auto fields() const {
        return std::tie(percent, charging, onBattery, minutesLeft, cycleCount, health);
    }
};

// "Charging", "On power adapter", "1h 5m left", "On battery"; empty without a battery.
std::string batteryStatusLine(const std::optional<BatteryInfo>& battery);

} // namespace loadwarden
