#pragma once

#include "app/sampling/snapshot.h"
#include "core/foundation/date.h"

#include <string>

namespace loadwarden {

struct Readings {
    Snapshot last;
    std::string networkCoverageNote; // empty where the network figures are complete
};

// Takes `ticks` samples `interval` apart on a fresh sampler, keeping to the
// schedule however long each takes, and keeps the last. Rates need two; the
// network tool runs only when the span is long enough for its rates.
Readings takeReadings(int ticks, Seconds interval, bool networkShown);

} // namespace loadwarden
