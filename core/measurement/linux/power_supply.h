#pragma once

#include "core/measurement/battery.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// The attributes of one /sys/class/power_supply entry from its uevent file,
// keyed without the "POWER_SUPPLY_" prefix ("TYPE", "CAPACITY", …).
using PowerSupply = std::map<std::string, std::string, std::less<>>;
PowerSupply parsePowerSupplyUevent(std::string_view text);

// A battery that powers the computer itself (not a mouse's or a phone's).
bool isSystemBattery(const PowerSupply& supply);

// For a mains supply, whether it is plugged in; nothing for other kinds.
std::optional<bool> mainsOnline(const PowerSupply& supply);

// The computer's batteries as one: what they hold and spend together, the
// most worn one's cycles. mainsOnline: whether some mains supply is online;
// absent when the computer has no mains entry, and the batteries' own status
// must tell. Absent without a battery.
std::optional<BatteryInfo> batteryInfoFromSupplies(const std::vector<PowerSupply>& batteries,
                                                   std::optional<bool> mainsOnline);

} // namespace loadwarden
