#pragma once

#include "core/measurement/system_sample.h"
#include "core/model/graphs.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// One graph of the Performance tab, ready to draw.
struct GraphPanel {
    std::string title;
    // The current figure in words; absent where the system gives none, which
    // is drawn as a dash with no line rather than as a flat zero.
    std::optional<std::string> figure;
    std::vector<double> values; // oldest first; empty without a figure
    std::size_t capacity = Series::graphCapacity;
    double top = 1.0;     // the value at the top of the graph: 1 for fractions
    std::string topLabel; // the top in words where the graph scales itself and has a line

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
