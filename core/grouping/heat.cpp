#include "core/grouping/heat.h"

#include "core/foundation/programming_error.h"

#include <array>
#include <cmath>

namespace loadwarden {

namespace {

using Thresholds = std::array<double, 4>;

// Decimal units throughout, as the figures are shown.
const Thresholds& thresholds(Heat::Metric metric) {
    static constexpr Thresholds cpu{5, 25, 60, 100};              // percent of one core
    static constexpr Thresholds memory{300e6, 800e6, 1.5e9, 3e9}; // bytes
    static constexpr Thresholds disk{100e3, 1e6, 10e6, 50e6};     // bytes per second
    static constexpr Thresholds network{10e3, 100e3, 1e6, 10e6};  // bytes per second
    static constexpr Thresholds energy{0.5, 2, 5, 10};            // watts
    static constexpr Thresholds gpu{5, 25, 60, 100}; // percent of one graphics processor
    switch (metric) {
    case Heat::Metric::cpu:
        return cpu;
    case Heat::Metric::memory:
        return memory;
    case Heat::Metric::disk:
        return disk;
    case Heat::Metric::network:
        return network;
    case Heat::Metric::energy:
        return energy;
    case Heat::Metric::gpu:
        return gpu;
    }
    programmingError("unknown heat metric");
}

} // namespace

int Heat::level(std::optional<double> value, Metric metric) {
    if (!value || !std::isfinite(*value)) {
        return 0;
    }
    int reached = 0;
    for (const double threshold : thresholds(metric)) {
        reached += threshold <= *value ? 1 : 0;
    }
    return reached;
}

} // namespace loadwarden
