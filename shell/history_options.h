#pragma once

#include "core/history/usage_history.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct HistoryOptions {
    bool json = false;
    HistoryRange range = HistoryRange::today;
    bool help = false;
};

constexpr std::string_view historyUsage =
    "usage: loadwarden history [--days 1|7|30] [--json]\n"
    "\n"
    "Lists what each app used while Loadwarden watched (the window, the menu bar\n"
    "meter or 'loadwarden watch'): processor time, peak memory, energy, network\n"
    "and how long it ran, most processor time first. History stays on this\n"
    "computer for 35 days.\n"
    "\n"
    "  --days N   today (1, the default) or the last 7 or 30 days\n"
    "  --json     print the apps as JSON\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<HistoryOptions, std::string>
parseHistoryOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
