#pragma once

#include "core/foundation/date.h"
#include "core/metrics/listen_address.h"
#include "core/metrics/usage_counters.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct ServeOptions {
    static constexpr Seconds longestInterval = 60.0;

    ListenAddress listen;
    // The busiest apps with series of their own.
    int apps = static_cast<int>(UsageCounters::defaultShownApps);
    std::optional<Seconds> interval; // absent: the user's setting
    bool help = false;
};

constexpr std::string_view serveUsage =
    "usage: loadwarden serve [--listen ADDRESS:PORT] [--apps N] [--interval SECONDS]\n"
    "\n"
    "Keeps watch as 'loadwarden watch' does, and answers Prometheus at\n"
    "http://ADDRESS:PORT/metrics with the figures of the whole computer, of\n"
    "each app, and of what slows it down, until interrupted.\n"
    "\n"
    "  --listen ADDRESS:PORT  where to answer (default: 127.0.0.1:21177, this\n"
    "                         computer only; [::]:21177 for every address)\n"
    "  --apps N               the N busiest apps have series of their own, the\n"
    "                         others share one named \"other\" (default: 50)\n"
    "  --interval SECONDS     the refresh interval for this run (default: the\n"
    "                         one chosen in the settings, 2 at first)\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<ServeOptions, std::string>
parseServeOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
