#pragma once

#include "app/sampling/sampler_backend.h"

#include <optional>
#include <vector>

namespace loadwarden {

// The graphics processors' load from the IOKit registry. The Mac gives it
// for the whole machine only, so no process gets a share of its own.
class DarwinGraphics {
public:
    void measure(std::vector<ProcessReading>& readings);
    std::optional<double> busy() const { return busy_; }

private:
    std::optional<double> busy_;
};

} // namespace loadwarden
