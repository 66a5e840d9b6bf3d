#pragma once

#include "core/grouping/process_group.h"

#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// How an app is started again after it quits: on macOS its bundle is
// opened; on Linux its leader's own command line runs again in the folder
// it ran in. Read while the app still runs.
struct Reopening {
    std::string program;
    std::vector<std::string> arguments;
    std::string folder; // empty: wherever this program is

    bool operator==(const Reopening&) const = default;
};

// Absent when the system does not say how the app was started.
std::optional<Reopening> reopeningOf(const ProcessGroup& group);

// Starts it on its own, not as this program's child; false when it could not start.
bool reopen(const Reopening& reopening);

} // namespace loadwarden
