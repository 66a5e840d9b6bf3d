#pragma once

#include "core/foundation/hashing.h"
#include "core/measurement/process_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace loadwarden {

// One line of `ps -axo pid=,ppid=,uid=,rss=,time=,state=,comm=`.
struct PSLine {
    std::int32_t pid = 0;
    std::int32_t ppid = 0;
    std::uint32_t uid = 0;
    std::uint64_t rssBytes = 0;
    std::uint64_t cpuTimeNs = 0;
    RunState state = RunState::other;
    std::string command; // may contain spaces

    // Nothing for a line that is not one, or whose size or time is past 64 bits.
    static std::optional<PSLine> parse(std::string_view line);
    // Lines that do not parse are dropped; order is kept.
    static std::vector<PSLine> parseOutput(std::string_view output);
    // "0:01.23", "12:34.56", "1:02:03", "2-03:04:05" → nanoseconds.
    static std::optional<std::uint64_t> parseTime(std::string_view field);

    bool operator==(const PSLine&) const = default;
    auto fields() const { return std::tie(pid, ppid, uid, rssBytes, cpuTimeNs, state, command); }
};

// Only the first character counts; the flags after it are ignored.
RunState runStateFromField(std::string_view field);

} // namespace loadwarden
