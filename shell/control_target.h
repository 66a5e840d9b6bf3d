#pragma once

#include "core/grouping/process_group.h"

#include <optional>
#include <string_view>
#include <vector>

namespace loadwarden {

// What a TARGET of the command line names among one refresh's groups.
struct ControlTarget {
    std::optional<ProcessGroup> group;   // exactly one match
    std::vector<ProcessGroup> ambiguous; // several groups of that name
};

// A pid names the group it leads, else that one process of its group; "app:…"
// and "pid:…" name a group by its id; anything else is a group's name, in any
// case.
ControlTarget resolveControlTarget(std::string_view target, const std::vector<ProcessGroup>& groups,
                                   std::int32_t selfPID);

} // namespace loadwarden
