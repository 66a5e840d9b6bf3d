#pragma once

#include "core/foundation/raw_value.h"

#include <optional>

namespace loadwarden {

namespace Heat {

enum class Metric { cpu, memory, disk, network, energy, gpu };

// How strongly a table cell is shaded: 0 (not at all) to 4, the number of the
// metric's thresholds that the value reaches. Absent or non-finite gives 0.
int level(std::optional<double> value, Metric metric);

} // namespace Heat

template <>
struct RawValues<Heat::Metric> {
    static constexpr RawValueTable<Heat::Metric, 6> table{{
        {Heat::Metric::cpu, "cpu"},
        {Heat::Metric::memory, "memory"},
        {Heat::Metric::disk, "disk"},
        {Heat::Metric::network, "network"},
        {Heat::Metric::energy, "energy"},
        {Heat::Metric::gpu, "gpu"},
    }};
};

} // namespace loadwarden
