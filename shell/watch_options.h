#pragma once

#include "core/foundation/date.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct WatchOptions {
    static constexpr Seconds longestInterval = 60.0;

    std::optional<Seconds> interval; // absent: the user's setting
    bool help = false;
};

constexpr std::string_view watchUsage =
    "usage: loadwarden watch [--interval SECONDS]\n"
    "\n"
    "Keeps watch as the menu bar meter does with the window closed: records\n"
    "App history, posts alerts, and prints the meter's text at every refresh,\n"
    "until interrupted. Refreshes come at least 5 seconds apart, and the\n"
    "processes are read every 15 seconds or so, to keep its own cost low.\n"
    "\n"
    "  --interval SECONDS  the refresh interval for this run (default: the\n"
    "                      one chosen in the settings, 2 at first)\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<WatchOptions, std::string>
parseWatchOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
