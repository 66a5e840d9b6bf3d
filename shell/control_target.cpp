#include "shell/control_target.h"

#include "core/grouping/process_grouper.h"
#include "core/text/case_folding.h"
#include "core/text/text_parsing.h"

#include <string>

namespace loadwarden {

ControlTarget resolveControlTarget(std::string_view target, const std::vector<ProcessGroup>& groups,
                                   std::int32_t selfPID) {
    if (const auto pid = parseInteger<std::int32_t>(target)) {
        for (const ProcessGroup& group : groups) {
            if (group.leader.record.pid == *pid) {
                return {.group = group};
            }
        }
        const auto member = ProcessGrouper::resolve("m:" + std::to_string(*pid), groups, selfPID);
        return {.group = member ? std::optional(member->row) : std::nullopt};
    }
    if (target.starts_with("app:") || target.starts_with("pid:")) {
        const auto found = ProcessGrouper::resolve(target, groups, selfPID);
        return {.group = found ? std::optional(found->row) : std::nullopt};
    }
    const std::string wanted = lowercased(trimWhitespace(target));
    ControlTarget named;
    for (const ProcessGroup& group : groups) {
        if (lowercased(group.name) == wanted) {
            named.ambiguous.push_back(group);
        }
    }
    if (named.ambiguous.size() == 1) {
        named.group = std::move(named.ambiguous.front());
        named.ambiguous.clear();
    }
    return named;
}

} // namespace loadwarden
