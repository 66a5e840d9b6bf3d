#pragma once

#include "core/foundation/date.h"
#include "core/grouping/process_column.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct AppsOptions {
    static constexpr Seconds longestInterval = 60.0;

    bool json = false;
    ProcessColumn column = ProcessColumn::cpu;
    bool ascending = false;
    std::string search;
    Seconds interval = 1.0;
    bool help = false;
};

constexpr std::string_view appsUsage =
    "usage: loadwarden apps [--json] [--sort name|cpu|memory|energy|disk|network|gpu]\n"
    "                       [--ascending] [--search TEXT] [--interval SECONDS]\n"
    "\n"
    "Watches the processes for SECONDS (default 1) and lists them as apps with\n"
    "their helpers, in sections: apps, background processes and the system's.\n"
    "Each group shows its totals, shaded by how heavy they are, and what can be\n"
    "done to it, or why nothing can.\n"
    "\n"
    "  --json              print the groups as JSON\n"
    "  --sort COLUMN       order within each section (default cpu)\n"
    "  --ascending         smallest first (default largest first)\n"
    "  --search TEXT       only groups whose names or pids hold every word\n"
    "  --interval SECONDS  seconds between the two readings, such as 2 or 0.5\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<AppsOptions, std::string> parseAppsOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
