#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace loadwarden {

struct InfoOptions {
    bool json = false;
    std::int32_t pid = 0;
    bool help = false;
};

constexpr std::string_view infoUsage =
    "usage: loadwarden info PID [--json]\n"
    "\n"
    "Everything known about one process: what it is and what it uses now, who\n"
    "made its program (on Linux the package that installed it, or its Flatpak\n"
    "or Snap app), whether it runs sandboxed, how many files it has open and\n"
    "which ports it listens on. Open files and ports show only for your own\n"
    "processes.\n"
    "\n"
    "  --json     print it as JSON\n";

// The options, or the one-line message that tells the user what was wrong.
std::variant<InfoOptions, std::string> parseInfoOptions(const std::vector<std::string>& arguments);

} // namespace loadwarden
