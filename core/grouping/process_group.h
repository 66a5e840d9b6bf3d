#pragma once

#include "core/foundation/hashing.h"
#include "core/grouping/group_kind.h"
#include "core/measurement/process_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace loadwarden {

// An app with its helper processes, or a lone process: one row of the process
// table. Its id is the app key that alerts, history, selection and expansion
// use: "app:{bundlePath}", "pid:{pid}", or "m:{pid}" for a member shown as a
// row of its own.
struct ProcessGroup {
    std::string id;
    std::string name;
    GroupKind kind = GroupKind::background;
    // The application bundle (a path ending in ".app"), or on Linux the
    // desktop-entry id that stands in for one; absent for "pid:" and "m:".
    std::optional<std::string> bundlePath;
    LiveProcess leader;
    std::vector<LiveProcess> members; // the leader first, then ascending pid

    bool isProtected = false; // part of the operating system
    bool isSelf = false;      // this program is one of the members

    double totalCPU() const;
    std::uint64_t totalMemory() const; // an overflow aborts rather than wraps
    // Absent when no member has the figure; else the sum of those that do.
    std::optional<double> totalEnergy() const;
    std::optional<double> totalDisk() const;
    std::optional<double> totalNetwork() const;
    std::optional<double> totalGPU() const;

    // Every one of the user's own members is stopped, and there is at least one.
    bool isPaused() const;

    bool operator==(const ProcessGroup&) const = default;
    auto fields() const {
        return std::tie(id, name, kind, bundlePath, leader, members, isProtected, isSelf);
    }
};

// Received plus sent, absent only when both are.
std::optional<double> networkTotal(const ProcessRates& rates);

// The title of a section of the process table.
std::string_view sectionTitle(GroupKind kind);

} // namespace loadwarden
