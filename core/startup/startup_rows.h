#pragma once

#include "core/measurement/process_record.h"
#include "core/startup/startup_item.h"

#include <vector>

namespace loadwarden {

// One line of the Startup apps tab.
struct StartupRow {
    StartupItem item;
    StartupImpact impact = StartupImpact::none;

    bool operator==(const StartupRow&) const = default;
};

// Each item with its impact, from what the processes running its program
// (by path, or by name for a bare command) use now.
std::vector<StartupRow> startupRows(const std::vector<StartupItem>& items,
                                    const std::vector<LiveProcess>& processes);

// How many rows are of high impact, which the explainer counts.
int heavyStartupItems(const std::vector<StartupRow>& rows);

} // namespace loadwarden
