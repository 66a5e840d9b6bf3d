#pragma once

// Synthetic processes for the grouping and policy tests.

#include "core/grouping/process_grouper.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace loadwarden::fixtures {

inline LiveProcess process(std::int32_t pid, std::string name, std::string path = "",
                           std::int32_t ppid = 1, bool isOwn = true) {
    return {.record = {.pid = pid,
                       .ppid = ppid,
                       .responsiblePID = pid,
                       .name = std::move(name),
                       .path = std::move(path),
                       .isOwn = isOwn,
                       .state = RunState::running}};
}

inline LiveProcess rootProcess(std::int32_t pid, std::string name, std::string path = "",
                               std::int32_t ppid = 1) {
    return process(pid, std::move(name), std::move(path), ppid, false);
}

// A group built by hand, led and named by its first member.
inline ProcessGroup groupOf(std::vector<LiveProcess> members,
                            GroupKind kind = GroupKind::background) {
    return {.id = "pid:" + std::to_string(members[0].record.pid),
            .name = members[0].record.name,
            .kind = kind,
            .leader = members[0],
            .members = std::move(members)};
}

inline std::vector<std::int32_t> pids(const std::vector<LiveProcess>& processes) {
    std::vector<std::int32_t> result(processes.size());
    std::ranges::transform(processes, result.begin(), [](const auto& p) { return p.record.pid; });
    return result;
}

inline std::vector<std::string> ids(const std::vector<ProcessGroup>& groups) {
    std::vector<std::string> result(groups.size());
    std::ranges::transform(groups, result.begin(), &ProcessGroup::id);
    return result;
}

inline const ProcessGroup& groupWithID(const std::vector<ProcessGroup>& groups,
                                       const std::string& id) {
    const auto found = std::ranges::find(groups, id, &ProcessGroup::id);
    if (found == groups.end()) {
        throw std::runtime_error("no group " + id);
    }
    return *found;
}

} // namespace loadwarden::fixtures
