#pragma once

#include "core/grouping/process_grouper.h"

#include <memory>
#include <vector>

namespace loadwarden {

// Which of the running processes the desktop treats as regular applications,
// and their display names: on macOS the workspace's apps with a Dock icon, on
// Linux the processes launched from a desktop entry that lists an app.
class RunningApps {
public:
    RunningApps();
    ~RunningApps();
    RunningApps(const RunningApps&) = delete;
    RunningApps& operator=(const RunningApps&) = delete;

    AppNames names(const std::vector<LiveProcess>& processes);

private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
};

} // namespace loadwarden
