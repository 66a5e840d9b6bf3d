#pragma once

#include "core/grouping/process_column.h"
#include "core/grouping/process_group.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// The running apps that the desktop shows as regular applications (with a
// Dock icon on macOS, with a desktop entry on Linux): pid → display name.
using AppNames = std::unordered_map<std::int32_t, std::string>;

// A selection of the process table resolved to its row, and the group that
// row belongs to when it is one member of it.
struct ResolvedSelection {
    ProcessGroup row;
    std::optional<ProcessGroup> parent;

    bool operator==(const ResolvedSelection&) const = default;
};

// Turns the flat process list of one refresh into apps with their helpers,
// and orders, searches and selects them. Pure: nothing is kept between calls.
namespace ProcessGrouper {

// The application bundle of an executable: up to the first ".app/" (so an
// app nested in another's bundle joins the outer one), or the path itself
// when it ends in ".app".
std::optional<std::string_view> bundlePath(std::string_view executablePath);

// What stands for a process's app bundle: on Linux the desktop entry of the
// app that launched it, else the bundle of its executable.
std::optional<std::string_view> bundleOf(const ProcessRecord& record);

// Groups in the order their keys first appear in `processes`.
std::vector<ProcessGroup> group(const std::vector<LiveProcess>& processes, const AppNames& appNames,
                                std::int32_t selfPID);

// Apps, then background processes, then the system's, each section ordered
// by the column; ties by name, ascending whatever the direction.
std::vector<ProcessGroup> sortGroups(std::vector<ProcessGroup> groups, ProcessColumn column,
                                     bool ascending);
std::vector<LiveProcess> sortMembers(const ProcessGroup& group, ProcessColumn column,
                                     bool ascending);

// The query lowercased and split at spaces; none means no filtering.
std::vector<std::string> searchTerms(std::string_view query);

// The groups whose name, member names and member pids contain every term.
std::vector<ProcessGroup> filter(const std::vector<ProcessGroup>& groups, std::string_view query);

// All members when the group's name matches by itself; else those whose own
// name and pid match.
std::vector<LiveProcess> visibleMembers(const ProcessGroup& group, std::string_view query);

// The row to select when Return is pressed in the search field.
std::optional<std::string> firstMatchKey(const std::vector<ProcessGroup>& groups,
                                         std::string_view query);

// One member of `parent` as a row of its own ("m:{pid}"). A helper acted upon
// alone is a background process, whatever its app is.
std::optional<ProcessGroup> memberGroup(std::int32_t pid, const ProcessGroup& parent,
                                        std::int32_t selfPID);

// A group id, or "m:{pid}" for a member of the first group that holds the pid.
std::optional<ResolvedSelection>
resolve(std::string_view key, const std::vector<ProcessGroup>& groups, std::int32_t selfPID);

} // namespace ProcessGrouper

} // namespace loadwarden
