#include "app/sampling/darwin/darwin_graphics.h"

#include "app/sampling/darwin/registry.h"

#include <algorithm>

namespace loadwarden {

void DarwinGraphics::measure(std::vector<ProcessReading>& /*readings*/) {
    std::optional<double> busiest;
    Registry::forEachService("IOAccelerator", [&busiest](io_object_t service) {
        const auto statistics = Registry::property(service, CFSTR("PerformanceStatistics"));
        if (const auto percent = CFValues::number(
                CFValues::value(statistics.get(), CFSTR("Device Utilization %")))) {
            busiest = std::max(busiest.value_or(0.0), *percent / 100.0);
        }
    });
    busy_ = busiest;
}

} // namespace loadwarden
