#pragma once

#include "core/foundation/hashing.h"
#include "core/grouping/process_group.h"
#include "core/measurement/system_sample.h"

#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace loadwarden {

// The meter in the menu bar: the processor figure, and the busiest app's
// name beside it while one uses half a core or more.
struct MenuBarState {
    static constexpr double namedAppPercent = 50.0; // of one core
    static constexpr std::size_t nameLength = 14;   // characters

    std::string text;
    std::string cpu;
    bool busy = false; // some app is running hot right now

    // The program itself and the system's groups are never named.
    static MenuBarState compute(const SystemSample& sample, const std::vector<ProcessGroup>& groups,
                                bool busy);

    bool operator==(const MenuBarState&) const = default;
    auto fields() const { return std::tie(text, cpu, busy); }
};

// The apps and background groups using at least hotPercent of one core now,
// the program itself aside: what the meter marks as busy and what keeps a
// running-hot banner up.
std::set<std::string> hotGroupKeys(const std::vector<ProcessGroup>& groups, double hotPercent);

} // namespace loadwarden
