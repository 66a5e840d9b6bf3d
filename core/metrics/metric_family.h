#pragma once

#include <string>
#include <utility>
#include <vector>

namespace loadwarden {

enum class MetricType { gauge, counter };

using MetricLabels = std::vector<std::pair<std::string, std::string>>;

struct MetricSample {
    MetricLabels labels;
    double value = 0.0;
};

// One named figure with all its labelled values. The name carries its unit
// ("_bytes", "_seconds") and, for a counter, not yet the "_total" that each
// format adds its own way.
struct MetricFamily {
    std::string name;
    MetricType type = MetricType::gauge;
    std::string unit; // "seconds", "bytes", "ratio" or empty
    std::string help;
    std::vector<MetricSample> samples;
};

} // namespace loadwarden
