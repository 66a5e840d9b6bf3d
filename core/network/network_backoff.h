#pragma once

#include "core/foundation/hashing.h"

#include <optional>
#include <tuple>

namespace loadwarden {

// How much longer than the view needs the network tool waits between runs:
// doubled after an expensive run, quadrupled after a killed one, halved after
// a cheap one, always between 1 and 64.
struct NetworkBackoff {
    static constexpr double leastFactor = 1.0;
    static constexpr double greatestFactor = 64.0;
    static constexpr double expensiveRunCPUSeconds = 0.25;

    double factor = leastFactor;
    std::optional<double> lastCost; // CPU seconds of the latest run

    void record(bool stopped, double cost);

    bool operator==(const NetworkBackoff&) const = default;
    auto fields() const { return std::tie(factor, lastCost); }
};

} // namespace loadwarden
