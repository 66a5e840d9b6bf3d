#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/measurement/network_bytes.h"

#include <cstdint>
#include <map>
#include <tuple>

namespace loadwarden {

// One process's network throughput in bytes per second.
struct NetworkRate {
    double in = 0;
    double out = 0;

    bool operator==(const NetworkRate&) const = default;
    auto fields() const { return std::tie(in, out); }
};

using NetworkRateMap = std::map<std::int32_t, NetworkRate>;

namespace NetworkRates {

// Rates of the processes in `current` over `seconds` since `previous`. A pid
// that is new, or now belongs to a differently named process, gets 0 for
// this interval rather than its whole history; a counter that went down
// gives 0, never a negative rate.
NetworkRateMap compute(const NetworkSample& previous, const NetworkSample& current,
                       Seconds seconds);

} // namespace NetworkRates

} // namespace loadwarden
