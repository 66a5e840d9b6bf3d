#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"

#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

namespace loadwarden {

// One reading of an app's resident memory.
struct MemoryPoint {
    Date date = 0.0;
    double bytes = 0.0;

    bool operator==(const MemoryPoint&) const = default;
    auto fields() const { return std::tie(date, bytes); }
};

// A straight line fitted through memory points by least squares.
struct MemoryTrend {
    double slopePerHour = 0.0; // bytes per hour
    double rSquared = 0.0;     // 0..1
    double growth = 0.0;       // rise of the line over the whole span, bytes
    Seconds span = 0.0;        // first to last point
    double start = 0.0;        // the line's value at the first point, bytes

    bool operator==(const MemoryTrend&) const = default;
    auto fields() const { return std::tie(slopePerHour, rSquared, growth, span, start); }
};

// When a trend counts as a leak: long, large in bytes and relative to where
// it started, and a clean line. The defaults are the ones the program uses.
struct LeakRule {
    Seconds minSpan = 1800;
    double minGrowth = 500'000'000;
    double minRelativeGrowth = 0.5;
    double minRSquared = 0.85;

    bool operator==(const LeakRule&) const = default;
    auto fields() const { return std::tie(minSpan, minGrowth, minRelativeGrowth, minRSquared); }
};

namespace LeakDetector {

// Absent for fewer than three points or points that span no time.
std::optional<MemoryTrend> trend(const std::vector<MemoryPoint>& points);

// The trend when it passes the rule.
std::optional<MemoryTrend> leak(const std::vector<MemoryPoint>& points, const LeakRule& rule = {});

// The default rule as the user reads it next to the leak alert's switch.
inline constexpr std::string_view ruleSummary =
    "Steady growth of 500 MB or more, by at least half, over 30 minutes or longer.";

} // namespace LeakDetector

} // namespace loadwarden
