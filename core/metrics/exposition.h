#pragma once

#include "core/metrics/metric_family.h"

#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

enum class ExpositionFormat {
    text,        // text/plain; version=0.0.4
    openMetrics, // application/openmetrics-text; version=1.0.0
};

// The format a scraper asks for in its Accept header: the acceptable one
// with the highest quality, the first listed among equals, and the text
// format when nothing it lists is ours.
ExpositionFormat negotiateFormat(std::string_view accept);

std::string_view contentType(ExpositionFormat format);

// The families written out in `format`. Label values and help texts are
// escaped, and bytes that are not UTF-8 become U+FFFD.
std::string expose(const std::vector<MetricFamily>& families, ExpositionFormat format);

} // namespace loadwarden
