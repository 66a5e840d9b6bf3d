#pragma once

#include "core/foundation/date.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct WhyOptions {
    static constexpr Seconds longestInterval = 60.0;

    bool json = false;
    int maxCount = 5;
    Seconds interval = 1.0;
    bool help = false;
};

constexpr std::string_view whyUsage =
    "usage: loadwarden why [--json] [--max N] [--interval SECONDS]\n"
    "\n"
    "Watches the system for SECONDS (default 1) and lists what is slowing it\n"
    "down, worst first, each with what to do about it, then the busiest apps.\n"
    "Leaks take half an hour to see: the window and 'loadwarden watch' follow\n"
    "memory over time and raise an alert for them.\n"
    "\n"
    "  --json              print the causes as JSON, with their texts\n"
    "  --max N             list at most N causes (default 5)\n"
    "  --interval SECONDS  seconds between the two readings, such as 2; less\n"
    "                      than 1 counts as 1\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<WhyOptions, std::string> parseWhyOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
