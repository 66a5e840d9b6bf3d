#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"

#include <optional>
#include <tuple>

namespace loadwarden {

// The duty cycle that keeps a group near a share of one core: in every
// 100 ms period its processes run for runShare of it and are stopped for the
// rest. Corrected from what the group is measured to use.
struct CPULimiter {
    static constexpr Seconds period = 0.1;
    static constexpr double leastShare = 0.05;
    static constexpr double greatestShare = 1.0;
    // A stop this short is not worth two signals.
    static constexpr Seconds shortestStop = 0.002;

    double limit = 1.0;    // percent of one core, at least 1
    double runShare = 1.0; // 0.05 to 1

    // measured: the group's CPU percent now; absent or not positive when unknown.
    CPULimiter(double limit, std::optional<double> measured);

    Seconds runTime() const { return runShare * period; }
    Seconds stopTime() const { return period - runShare * period; }

    // Halfway toward the share that would have met the limit at the measured
    // rate; a group that hardly ran is let run more.
    void adjust(double measured);

    bool operator==(const CPULimiter&) const = default;
    auto fields() const { return std::tie(limit, runShare); }
};

} // namespace loadwarden
