#include "core/measurement/linux/power_supply.h"

#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <cmath>
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

// Energy figures (µWh) where the battery reports them, else charge (µAh):
// batteries report one family or the other.
std::optional<double> amount(const PowerSupply& supply, std::string_view suffix) {
    for (const std::string_view family : {"ENERGY_", "CHARGE_"}) {
        if (const auto value = number(supply, std::string(family) + std::string(suffix))) {
            return value;
        }
    }
    return std::nullopt;
}

std::optional<double> ratio(std::optional<double> part, std::optional<double> whole) {
    if (!part || !whole || !(*whole > 0.0)) {
        return std::nullopt;
    }
    return std::clamp(*part / *whole, 0.0, 1.0);
}

std::optional<int> minutesUntilEmpty(const PowerSupply& battery) {
    std::optional<double> minutes;
    if (const auto seconds = number(battery, "TIME_TO_EMPTY_NOW")) {
        minutes = *seconds / 60.0;
    } else {
        // Energy drains by power, charge by current; some batteries report a
        // discharging current as negative.
        for (const auto& [stored, drain] :
             {std::pair{"ENERGY_NOW", "POWER_NOW"}, std::pair{"CHARGE_NOW", "CURRENT_NOW"}}) {
            const auto remaining = number(battery, stored);
            const auto rate = number(battery, drain);
            if (remaining && rate && *rate != 0.0) {
                minutes = *remaining / std::abs(*rate) * 60.0;
                break;
            }
        }
    }
    if (!minutes || !(*minutes >= 1.0)) {
        return std::nullopt;
    }
    return static_cast<int>(*minutes);
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

BatteryInfo batteryInfoFromSupply(const PowerSupply& battery, std::optional<bool> mainsOnline) {
    const std::string_view status = attribute(battery, "STATUS");
    const bool onBattery = mainsOnline ? !*mainsOnline : status == "Discharging";
    const auto capacity = number(battery, "CAPACITY");
    const auto cycles = number(battery, "CYCLE_COUNT");
    return BatteryInfo{
        .percent = capacity ? std::clamp(*capacity / 100.0, 0.0, 1.0)
                            : ratio(amount(battery, "NOW"), amount(battery, "FULL")).value_or(0.0),
        .charging = status == "Charging",
        .onBattery = onBattery,
        .minutesLeft = onBattery ? minutesUntilEmpty(battery) : std::nullopt,
        // Many batteries report 0 cycles when they do not count them.
        .cycleCount =
            cycles && *cycles > 0 ? std::optional<int>(static_cast<int>(*cycles)) : std::nullopt,
        .health = ratio(amount(battery, "FULL"), amount(battery, "FULL_DESIGN")),
    };
}

} // namespace loadwarden
