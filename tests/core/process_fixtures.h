#pragma once

// Synthetic processes for the grouping and policy tests.

#include "core/process_grouper.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace loadwarden::fixtures {

inline LiveProcess process(std::int32_t pid, std::string name, std::string path = "",
                           std::int32_t ppid = 1, bool isOwn = true) {
    LiveProcess live;
    live.record.pid = pid;
    live.record.ppid = ppid;
    live.record.responsiblePID = pid;
    live.record.name = std::move(name);
    live.record.path = std::move(path);
    live.record.isOwn = isOwn;
    live.record.state = RunState::running;
    return live;
}

inline LiveProcess rootProcess(std::int32_t pid, std::string name, std::string path = "",
                               std::int32_t ppid = 1) {
    return process(pid, std::move(name), std::move(path), ppid, false);
}

inline std::vector<std::int32_t> pids(const std::vector<LiveProcess>& processes) {
    std::vector<std::int32_t> result;
    for (const auto& each : processes) {
        result.push_back(each.record.pid);
    }
    return result;
}

inline std::vector<std::string> ids(const std::vector<ProcessGroup>& groups) {
    std::vector<std::string> result;
    for (const auto& group : groups) {
        result.push_back(group.id);
    }
    return result;
}

inline const ProcessGroup& groupWithID(const std::vector<ProcessGroup>& groups,
                                       const std::string& id) {
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&id](const ProcessGroup& group) { return group.id == id; });
    if (found == groups.end()) {
        throw std::runtime_error("no group " + id);
    }
    return *found;
}

} // namespace loadwarden::fixtures
