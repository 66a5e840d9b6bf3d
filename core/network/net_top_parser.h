#pragma once

#include "core/measurement/network_bytes.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// Reads the per-process CSV of macOS's nettop: blocks of rows, each block
// opened by a header line, one row per process. Text may arrive in pieces;
// a sample is complete when the next header arrives.
class NetTopParser {
public:
    // Every sample completed by this text, oldest first.
    std::vector<NetworkSample> feed(std::string_view text);

    // One process row, as in "12:00:00.000000,launchd.1,10,20,"; nothing for
    // headers and anything unreadable.
    static std::optional<NetworkBytes> parseLine(std::string_view line);

private:
    NetworkSample pending_;
    std::string buffer_; // text after the last line feed
};

} // namespace loadwarden
