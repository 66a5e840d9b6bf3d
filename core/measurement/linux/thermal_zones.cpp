#include "core/measurement/linux/thermal_zones.h"

#include "core/text/text_parsing.h"

#include <algorithm>

namespace loadwarden {

namespace {

// Within this many degrees of slowing down, the machine counts as warm.
constexpr double warmMargin = 10.0;

// Firmware leaves trips it never set at 0 °C (older kernels) or at about
// -274 °C (newer ones), and some report sentinels far above anything silicon
// survives. No processor is slowed down below room temperature, so a mark
// outside this range is no mark at all.
bool isRealMark(double celsius) {
    return celsius >= 20.0 && celsius <= 150.0;
}

// A sensor that cannot be read reports the same sentinels as unset trips.
bool isRealTemperature(double celsius) {
    return celsius > -60.0 && celsius < 200.0;
}

ThermalLevel zoneLevel(const ThermalZone& zone) {
    if (!isRealTemperature(zone.celsius)) {
        return ThermalLevel::nominal;
    }
    std::optional<double> slowdown;
    std::optional<double> shutdown;
    auto lowest = [](std::optional<double>& mark, double celsius) {
        mark = mark ? std::min(*mark, celsius) : celsius;
    };
    for (const auto& trip : zone.trips) {
        if (!isRealMark(trip.celsius)) {
            continue;
        }
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
