#include "core/measurement/linux/thermal_zones.h"

#include "core/text/text_parsing.h"

#include <algorithm>

namespace loadwarden {

namespace {

// Within this many degrees of slowing down, the machine counts as warm.
constexpr double warmMargin = 10.0;

ThermalLevel zoneLevel(const ThermalZone& zone) {
    std::optional<double> slowdown;
    std::optional<double> shutdown;
    auto lowest = [](std::optional<double>& mark, double celsius) {
        mark = mark ? std::min(*mark, celsius) : celsius;
    };
    for (const auto& trip : zone.trips) {
        if (trip.type == "passive") {
            lowest(slowdown, trip.celsius);
        } else if (trip.type == "hot" || trip.type == "critical") {
            lowest(shutdown, trip.celsius);
        }
    }
    if (shutdown && zone.celsius >= *shutdown) {
        return ThermalLevel::critical;
    }
    if (slowdown && zone.celsius >= *slowdown) {
        return ThermalLevel::serious;
    }
    const auto firstMark = slowdown ? slowdown : shutdown;
    if (firstMark && zone.celsius >= *firstMark - warmMargin) {
        return ThermalLevel::fair;
    }
    return ThermalLevel::nominal;
}

} // namespace

ThermalLevel thermalLevelFromZones(const std::vector<ThermalZone>& zones, bool throttled) {
    ThermalLevel level = throttled ? ThermalLevel::serious : ThermalLevel::nominal;
    for (const auto& zone : zones) {
        level = std::max(level, zoneLevel(zone));
    }
    return level;
}

std::optional<double> parseMillidegrees(std::string_view text) {
    const auto value = parseInteger<long long>(trimWhitespace(text));
    if (!value) {
        return std::nullopt;
    }
    return static_cast<double>(*value) / 1000.0;
}

} // namespace loadwarden
