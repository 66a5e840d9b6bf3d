#pragma once

#include "core/measurement/system_sample.h"
#include "core/model/graphs.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// What a graph's values measure, which says how they read in words.
enum class GraphUnit { fraction, bytes, bytesPerSecond, watts };

// One graph of the Performance tab, ready to draw.
struct GraphPanel {
    std::string title;
    // The current figure in words; absent where the system gives none, which
    // is drawn as a dash with no line rather than as a flat zero.
    std::optional<std::string> figure;
    std::vector<double> values; // oldest first; empty without a figure
    std::vector<Date> readAt;   // when each value was read, where that is known
    std::size_t capacity = Series::graphCapacity;
    double top = 1.0; // the value at the top of the graph: 1 for fractions
    GraphUnit unit = GraphUnit::fraction;

    // A share of the top in words, for the scale: "100%", "5 MB/s".
    std::string scaleLabel(double share) const;
    // One value in words with how long before the newest it was read:
    // "42% · 12s ago", "42% · now".
    std::string readout(std::size_t index) const;

    bool operator==(const GraphPanel&) const = default;
};

// The cores of one kind, under their heading.
struct CoreSection {
    std::string heading;
    std::vector<GraphPanel> cores;

    bool operator==(const CoreSection&) const = default;
};

struct PerformancePanels {
    static constexpr std::size_t systemCount = 10;

    // Always the same panels in the same order: CPU, memory, swap, GPU, disk
    // read and write, network in and out, battery, energy.
    std::vector<GraphPanel> system;
    // One section of all cores, or one per kind where the processor has two.
    std::vector<CoreSection> cores;

    bool operator==(const PerformancePanels&) const = default;
};

// `energyKnown`: whether some live process tells its energy use, without
// which the energy series is only zeros.
PerformancePanels performancePanels(const Graphs& graphs, const SystemSample& sample,
                                    bool energyKnown);

} // namespace loadwarden
