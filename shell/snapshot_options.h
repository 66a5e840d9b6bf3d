#pragma once

#include "core/foundation/date.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct SnapshotOptions {
    static constexpr Seconds longestInterval = 86400.0;

    bool json = false;
    Seconds interval = 1.0;
    int ticks = 2;
    bool help = false;
};

constexpr std::string_view snapshotUsage =
    "usage: loadwarden snapshot [--json] [--interval SECONDS] [--ticks N]\n"
    "\n"
    "Takes N ticks (default 2) SECONDS apart (default 1) and prints the last:\n"
    "every process with its rates, sorted by CPU, and the system's figures.\n"
    "Rates need two ticks; a single tick shows them as zero.\n"
    "\n"
    "  --json              print the snapshot as JSON\n"
    "  --interval SECONDS  seconds between ticks, such as 2 or 0.5\n"
    "  --ticks N           number of ticks to take, at least 1\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<SnapshotOptions, std::string>
parseSnapshotOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
