#pragma once

#include "core/foundation/hashing.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace loadwarden {

// Cumulative network counters of one process as a tool reports them.
struct NetworkBytes {
    std::int32_t pid = 0;
    std::string name;
    std::uint64_t bytesIn = 0;
    std::uint64_t bytesOut = 0;

    bool operator==(const NetworkBytes&) const = default;
    auto fields() const { return std::tie(pid, name, bytesIn, bytesOut); }
};

// One reading of every process's counters, by pid.
using NetworkSample = std::map<std::int32_t, NetworkBytes>;

} // namespace loadwarden
