#pragma once

#include "core/diagnosis/alert.h"
#include "core/diagnosis/explainer.h"
#include "core/grouping/process_group.h"
#include "core/measurement/system_sample.h"
#include "core/metrics/metric_family.h"
#include "core/metrics/usage_counters.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace loadwarden {

// Everything one scrape reports, all of it from one tick.
struct MachineFigures {
    const SystemSample& system;
    const std::vector<ProcessGroup>& groups;
    const UsageCounters& counters; // recorded with the same groups
    const std::map<std::string, double>& limits; // by group id
    const std::vector<Cause>& causes;
    const std::map<AlertKind, std::uint64_t>& alertsRaised;
    std::int32_t selfPID = 0;
};

// The families an exporter serves, named "loadwarden_…" in base units. A
// figure the system did not give is left out, never written as 0.
std::vector<MetricFamily> machineMetrics(const MachineFigures& figures);

} // namespace loadwarden
