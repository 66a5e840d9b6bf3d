#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct StartupOptions {
    bool json = false;
    // "on" or "off" with the item's name or label; absent to list.
    std::optional<bool> turnOn;
    std::string target;
    bool help = false;
};

constexpr std::string_view startupUsage =
    "usage: loadwarden startup [--json]\n"
    "       loadwarden startup on|off NAME\n"
    "\n"
    "Lists what starts at login or on demand, with its kind, how it runs,\n"
    "whether it is on and how heavy it is; or turns one of your own items on\n"
    "or off. NAME is an item's name or label, as the list shows them.\n"
    "\n"
    "  --json     print the items as JSON\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<StartupOptions, std::string>
parseStartupOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
