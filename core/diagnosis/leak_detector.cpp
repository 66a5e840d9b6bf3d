#include "core/diagnosis/leak_detector.h"

namespace loadwarden::LeakDetector {

std::optional<MemoryTrend> trend(const std::vector<MemoryPoint>& points) {
    if (points.size() < 3) {
        return std::nullopt;
    }
    const Date first = points.front().date;
    const Seconds span = points.back().date - first;
    if (!(span > 0)) {
        return std::nullopt;
    }
    // Two passes: deviations from the means keep large byte counts precise.
    const auto n = static_cast<double>(points.size());
    double meanX = 0;
    double meanY = 0;
    for (const MemoryPoint& point : points) {
        meanX += (point.date - first) / 3600.0;
        meanY += point.bytes;
    }
    meanX /= n;
    meanY /= n;
    double sxy = 0;
    double sxx = 0;
    double syy = 0;
    for (const MemoryPoint& point : points) {
        const double dx = (point.date - first) / 3600.0 - meanX;
        const double dy = point.bytes - meanY;
        sxy += dx * dy;
        sxx += dx * dx;
        syy += dy * dy;
    }
    if (!(sxx > 0)) {
        return std::nullopt;
    }
    const double slope = sxy / sxx;
    return MemoryTrend{.slopePerHour = slope,
                       .rSquared = syy > 0 ? sxy * sxy / (syy * sxx) : 0.0,
                       .growth = span / 3600.0 * slope,
                       .span = span,
                       .start = meanY - meanX * slope};
}

std::optional<MemoryTrend> leak(const std::vector<MemoryPoint>& points, const LeakRule& rule) {
    const auto fitted = trend(points);
    if (!fitted || fitted->span < rule.minSpan || !(fitted->slopePerHour > 0) ||
        fitted->rSquared < rule.minRSquared || fitted->growth < rule.minGrowth) {
        return std::nullopt;
    }
    // A line that starts at or below zero bytes counts as growing by any amount.
    const double relativeFloor =
        fitted->start >= 1 ? rule.minRelativeGrowth * fitted->start : rule.minRelativeGrowth;
    if (fitted->growth < relativeFloor) {
        return std::nullopt;
    }
    return fitted;
}

} // namespace loadwarden::LeakDetector
