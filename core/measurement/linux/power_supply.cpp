#include "core/measurement/linux/power_supply.h"

#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace loadwarden {

namespace {

std::string_view attribute(const PowerSupply& supply, std::string_view key) {
    const auto found = supply.find(key);
    return found == supply.end() ? std::string_view{} : std::string_view(found->second);
}

std::optional<double> number(const PowerSupply& supply, std::string_view key) {
    const auto value = parseInteger<long long>(attribute(supply, key));
    if (!value) {
        return std::nullopt;
    }
    return static_cast<double>(*value);
}

// What one battery holds and spends, in energy (µWh, µW) where it reports
// energy, else in charge (µAh, µA): batteries report one family or the other.
struct Reserve {
    bool isEnergy = false;
    std::optional<double> now;
    std::optional<double> full;
    std::optional<double> design;
    std::optional<double> drain; // some batteries report a discharging current as negative
};

Reserve reserveOf(const PowerSupply& battery) {
    const bool isEnergy = number(battery, "ENERGY_NOW") || number(battery, "ENERGY_FULL");
    const std::string family = isEnergy ? "ENERGY_" : "CHARGE_";
    const auto drain = number(battery, isEnergy ? "POWER_NOW" : "CURRENT_NOW");
    return Reserve{
        .isEnergy = isEnergy,
        .now = number(battery, family + "NOW"),
        .full = number(battery, family + "FULL"),
        .design = number(battery, family + "FULL_DESIGN"),
        .drain = drain ? std::optional(std::abs(*drain)) : std::nullopt,
    };
}

// The batteries' reserves added up; absent when they do not all report the
// figure in the same family of units.
std::optional<double> total(const std::vector<Reserve>& reserves,
                            std::optional<double> Reserve::*figure) {
    double sum = 0.0;
    for (const auto& reserve : reserves) {
        if (!(reserve.*figure) || reserve.isEnergy != reserves.front().isEnergy) {
            return std::nullopt;
        }
        sum += *(reserve.*figure);
    }
    return sum;
}

std::optional<double> ratio(std::optional<double> part, std::optional<double> whole) {
    if (!part || !whole || !(*whole > 0.0)) {
        return std::nullopt;
    }
    return std::clamp(*part / *whole, 0.0, 1.0);
}

double percentOf(const std::vector<PowerSupply>& batteries, const std::vector<Reserve>& reserves) {
    // One battery: its own charge figure. Several: what they hold together,
    // since a half-empty small battery weighs less than a half-empty large one.
    if (batteries.size() == 1) {
        if (const auto capacity = number(batteries.front(), "CAPACITY")) {
            return std::clamp(*capacity / 100.0, 0.0, 1.0);
        }
    }
    if (const auto together =
            ratio(total(reserves, &Reserve::now), total(reserves, &Reserve::full))) {
        return *together;
    }
    double sum = 0.0;
    for (const auto& battery : batteries) {
        sum += std::clamp(number(battery, "CAPACITY").value_or(0.0) / 100.0, 0.0, 1.0);
    }
    return sum / static_cast<double>(batteries.size());
}

std::optional<int> minutesUntilEmpty(const std::vector<PowerSupply>& batteries,
                                     const std::vector<Reserve>& reserves) {
    std::optional<double> minutes;
    if (batteries.size() == 1) {
        if (const auto seconds = number(batteries.front(), "TIME_TO_EMPTY_NOW")) {
            minutes = *seconds / 60.0;
        }
    }
    // Laptops with two batteries drain one at a time; the others wait at 0.
    const auto remaining = total(reserves, &Reserve::now);
    const auto drain = total(reserves, &Reserve::drain);
    if (!minutes && remaining && drain && *drain > 0.0) {
        minutes = *remaining / *drain * 60.0;
    }
    // A drain of a few microwatts promises years; no battery lasts a month.
    constexpr double longestMinutes = 31 * 24 * 60;
    if (!minutes || !(*minutes >= 1.0) || *minutes > longestMinutes) {
        return std::nullopt;
    }
    return static_cast<int>(*minutes);
}

std::optional<int> mostCycles(const std::vector<PowerSupply>& batteries) {
    std::optional<int> most;
    for (const auto& battery : batteries) {
        // Many batteries report 0 cycles when they do not count them.
        if (const auto cycles = number(battery, "CYCLE_COUNT");
            cycles && *cycles > 0 && *cycles <= std::numeric_limits<int>::max()) {
            most = std::max(most.value_or(0), static_cast<int>(*cycles));
        }
    }
    return most;
}

} // namespace

PowerSupply parsePowerSupplyUevent(std::string_view text) {
    constexpr std::string_view prefix = "POWER_SUPPLY_";
    PowerSupply supply;
    forEachLine(text, [&supply, prefix](std::string_view line) {
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos && startsWith(line, prefix)) {
            supply.emplace(std::string(line.substr(prefix.size(), equals - prefix.size())),
                           std::string(trimWhitespace(line.substr(equals + 1))));
        }
    });
    return supply;
}

bool isSystemBattery(const PowerSupply& supply) {
    return attribute(supply, "TYPE") == "Battery" && attribute(supply, "SCOPE") != "Device";
}

std::optional<bool> mainsOnline(const PowerSupply& supply) {
    if (attribute(supply, "TYPE") != "Mains") {
        return std::nullopt;
    }
    return attribute(supply, "ONLINE") == "1";
}

std::optional<BatteryInfo> batteryInfoFromSupplies(const std::vector<PowerSupply>& batteries,
                                                   std::optional<bool> mainsOnline) {
    if (batteries.empty()) {
        return std::nullopt;
    }
    std::vector<Reserve> reserves;
    bool charging = false;
    bool discharging = false;
    for (const auto& battery : batteries) {
        reserves.push_back(reserveOf(battery));
        charging = charging || attribute(battery, "STATUS") == "Charging";
        discharging = discharging || attribute(battery, "STATUS") == "Discharging";
    }
    const bool onBattery = mainsOnline ? !*mainsOnline : discharging;
    return BatteryInfo{
        .percent = percentOf(batteries, reserves),
        .charging = charging,
        .onBattery = onBattery,
        .minutesLeft = onBattery ? minutesUntilEmpty(batteries, reserves) : std::nullopt,
        .cycleCount = mostCycles(batteries),
        .health = ratio(total(reserves, &Reserve::full), total(reserves, &Reserve::design)),
    };
}

} // namespace loadwarden
