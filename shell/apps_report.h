#pragma once

#include "core/grouping/process_group.h"
#include "shell/apps_options.h"

#include <iosfwd>
#include <vector>

namespace loadwarden {

// A group as the table lists it, with the members shown under it: in the
// chosen order and, with a search, only those it leaves visible.
struct AppsRow {
    ProcessGroup group;
    std::vector<LiveProcess> shownMembers;
};

// The groups that the search keeps, section by section in the chosen order.
std::vector<AppsRow> arrangeApps(std::vector<ProcessGroup> groups, const AppsOptions& options);

// Sections with their groups' totals, shaded by heat, and what can be done to
// each group or why nothing can; members indented under their group.
void printAppsReport(const std::vector<AppsRow>& rows, std::ostream& out);

// The groups with their data model's field names (the kind as its integer),
// their totals, heat levels, allowed actions and the members shown.
void printAppsJSON(const std::vector<AppsRow>& rows, std::ostream& out);

} // namespace loadwarden
