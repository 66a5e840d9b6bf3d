#include "core/measurement/sampling_plan.h"

#include <algorithm>

namespace loadwarden {

namespace {

constexpr Seconds leastInterval = 1.0;
constexpr Seconds hiddenTickInterval = 5.0;
constexpr Seconds hiddenProcessInterval = 15.0;
constexpr Seconds networkIntervalWhenColumnHidden = 60.0;
constexpr Seconds networkIntervalWhenWindowHidden = 120.0;
constexpr Seconds networkStaleSlack = 10.0;

} // namespace

Seconds SamplingPlan::tickInterval() const {
    const Seconds effective = std::max(interval, leastInterval);
    return windowVisible ? effective : std::max(effective, hiddenTickInterval);
}

Seconds SamplingPlan::processInterval() const {
    const Seconds effective = std::max(interval, leastInterval);
    return windowVisible ? effective : std::max(effective, hiddenProcessInterval);
}

bool SamplingPlan::isFullSampleDue(std::optional<Date> last, Date now) const {
    if (windowVisible || !last) {
        return true;
    }
    const SamplingPlan hidden{
        .windowVisible = false, .networkShown = networkShown, .interval = interval};
    // Half a tick of slack puts the full sample on the nearest tick, not one late.
    return now - *last >= hidden.processInterval() - hidden.tickInterval() / 2.0;
}

Seconds SamplingPlan::networkInterval() const {
    if (!windowVisible) {
        return networkIntervalWhenWindowHidden;
    }
    if (!networkShown) {
        return networkIntervalWhenColumnHidden;
    }
    return std::max(interval, leastShownNetworkInterval);
}

Seconds SamplingPlan::networkInterval(double factor) const {
    return std::min(factor * networkInterval(), maximumNetworkInterval);
}

Seconds SamplingPlan::networkStaleAfter(double factor) const {
    return 2.0 * networkInterval(factor) + networkStaleSlack;
}

} // namespace loadwarden
