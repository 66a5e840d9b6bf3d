#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/measurement/network_bytes.h"
#include "core/measurement/process_record.h"

#include <cstdint>
#include <map>
#include <optional>
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

// Rates between two readings of the tool, by pid; `since` is when the first
// of the two was taken.
struct MeasuredNetworkRates {
    Date since = 0.0;
    NetworkRateMap byPID;

    bool operator==(const MeasuredNetworkRates&) const = default;
};

namespace NetworkRates {

// Rates of the processes in `current` over `seconds` since `previous`. A pid
// that is new, or now belongs to a differently named process, gets 0 for
// this interval rather than its whole history; a counter that went down
// gives 0, never a negative rate.
NetworkRateMap compute(const NetworkSample& previous, const NetworkSample& current,
                       Seconds seconds);

// The rate of the process now behind a pid; absent when the tool saw nothing
// under it. A process that started after the first reading is not the one
// that was measured (its pid was reused), so it gets 0, never another's
// traffic. An unknown start time is taken on trust.
std::optional<NetworkRate> rateOf(const MeasuredNetworkRates& rates, const ProcessRecord& process);

} // namespace NetworkRates

} // namespace loadwarden
