#include "core/text/units_format.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace loadwarden {

namespace {

// One decimal below 10, whole from 10 up, and no trailing ".0".
std::string formatNumber(double value) {
    char text[32];
    const double rounded = std::round(value * 10.0) / 10.0;
    if (rounded >= 10.0 || rounded == std::floor(rounded)) {
        std::snprintf(text, sizeof text, "%.0f", std::round(value));
    } else {
        std::snprintf(text, sizeof text, "%.1f", rounded);
    }
    return text;
}

} // namespace

std::string formatByteAmount(double bytes) {
    static constexpr std::array<const char*, 6> units{"KB", "MB", "GB", "TB", "PB", "EB"};
    if (!(std::isfinite(bytes) && bytes >= 999.5)) {
        const double whole = std::isfinite(bytes) && bytes > 0 ? std::round(bytes) : 0.0;
        return formatNumber(whole) + (whole == 1.0 ? " byte" : " bytes");
    }
    double value = bytes / 1000.0;
    std::size_t unit = 0;
    // Move up a unit when rounding would print 1000 of this one.
    while (value >= 999.5 && unit + 1 < units.size()) {
        value /= 1000.0;
        ++unit;
    }
    return formatNumber(value) + " " + units[unit];
}

std::string formatBytes(std::uint64_t bytes) {
    return formatByteAmount(static_cast<double>(bytes));
}

std::string formatBytesPerSecond(double bytesPerSecond) {
    return formatByteAmount(bytesPerSecond) + "/s";
}

std::string formatPercent(double percent) {
    return formatNumber(std::isfinite(percent) && percent > 0 ? percent : 0.0) + "%";
}

std::string formatCount(double amount, std::string_view unit) {
    const auto whole = std::isfinite(amount) && amount > 0 ? static_cast<std::int64_t>(amount) : 0;
    return std::to_string(whole) + " " + std::string(unit) + (whole == 1 ? "" : "s");
}

std::string formatWatts(double watts) {
    return formatNumber(std::isfinite(watts) && watts > 0 ? watts : 0.0) + " W";
}

std::string formatWattHours(double joules) {
    constexpr double joulesPerWattHour = 3600.0;
    return formatNumber(std::isfinite(joules) && joules > 0 ? joules / joulesPerWattHour : 0.0) +
           " Wh";
}

} // namespace loadwarden
