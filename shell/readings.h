#pragma once

#include "app/snapshot.h"
#include "core/date.h"

namespace loadwarden {

// Takes `ticks` samples `interval` apart on a fresh sampler, keeping to the
// schedule however long each takes, and returns the last. Rates need two.
Snapshot lastOfReadings(int ticks, Seconds interval, bool networkShown);

} // namespace loadwarden
