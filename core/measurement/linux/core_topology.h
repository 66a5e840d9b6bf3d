#pragma once

#include "core/measurement/cpu.h"

#include <map>
#include <vector>

namespace loadwarden {

// Which logical cores are fast and which are frugal, by kernel CPU number.
// Linux numbers them in no fixed order (Intel puts its performance cores
// first), so kinds go by number rather than by count.
struct CoreTopology {
    std::vector<int> performance;
    std::vector<int> efficiency;

    // From each core's relative capacity (ARM's cpu_capacity): the largest
    // are performance cores, the rest efficiency cores; all alike is no split.
    static CoreTopology fromCapacities(const std::map<int, int>& capacities);

    // The kind of each core read; every core is standard unless both kinds
    // exist and every core read belongs to one of them.
    std::vector<CoreKind> kinds(const std::vector<int>& cpus) const;
};

} // namespace loadwarden
