#include "core/measurement/linux/core_topology.h"

#include <algorithm>

namespace loadwarden {

CoreTopology CoreTopology::fromCapacities(const std::map<int, int>& capacities) {
    CoreTopology topology;
    int largest = 0;
    for (const auto& [cpu, capacity] : capacities) {
        largest = std::max(largest, capacity);
    }
    for (const auto& [cpu, capacity] : capacities) {
        (capacity == largest ? topology.performance : topology.efficiency).push_back(cpu);
    }
    return topology;
}

std::vector<CoreKind> CoreTopology::kinds(const std::vector<int>& cpus) const {
    auto holds = [](const std::vector<int>& set, int cpu) {
        return std::find(set.begin(), set.end(), cpu) != set.end();
    };
    std::vector<CoreKind> result;
    const bool split = !performance.empty() && !efficiency.empty();
    for (const int cpu : cpus) {
        if (split && holds(performance, cpu)) {
            result.push_back(CoreKind::performance);
        } else if (split && holds(efficiency, cpu)) {
            result.push_back(CoreKind::efficiency);
        } else {
            return std::vector<CoreKind>(cpus.size(), CoreKind::standard);
        }
    }
    return result;
}

} // namespace loadwarden
