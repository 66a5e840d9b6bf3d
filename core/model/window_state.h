#pragma once

#include "core/foundation/raw_value.h"
#include "core/grouping/process_group.h"

#include <array>
#include <string_view>

namespace loadwarden {

// The window's tabs, in the order of their shortcuts.
enum class Tab { processes, performance, history, startup, details };

template <>
struct RawValues<Tab> {
    static constexpr RawValueTable<Tab, 5> table{{
        {Tab::processes, "processes"},
        {Tab::performance, "performance"},
        {Tab::history, "history"},
        {Tab::startup, "startup"},
        {Tab::details, "details"},
    }};
};

inline constexpr std::array<Tab, 5> allTabs{Tab::processes, Tab::performance, Tab::history,
                                            Tab::startup, Tab::details};

constexpr std::string_view title(Tab tab) {
    switch (tab) {
    case Tab::processes:
        return "Processes";
    case Tab::performance:
        return "Performance";
    case Tab::history:
        return "App history";
    case Tab::startup:
        return "Startup apps";
    case Tab::details:
        return "Details";
    }
    return {};
}

// What shows over the window, one at a time.
enum class Sheet { welcome, whySlow, palette };

// A quit or force quit waiting for the user to confirm it.
struct PendingForceQuit {
    enum class Kind { quit, forceQuit };
    ProcessGroup group;
    Kind kind = Kind::forceQuit;

    bool operator==(const PendingForceQuit&) const = default;
};

} // namespace loadwarden
