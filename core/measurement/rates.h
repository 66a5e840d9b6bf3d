#pragma once

#include "core/foundation/date.h"
#include "core/measurement/network_bytes.h"
#include "core/measurement/process_record.h"

#include <optional>

namespace loadwarden {

namespace ProcessIdentity {

// Two readings of one pid are of the same process when they started at the
// same moment; an unknown (0) start time never breaks the match, so a reused
// pid is told apart wherever start times are known.
bool sameStart(const ProcessRecord& a, const ProcessRecord& b);

} // namespace ProcessIdentity

// What the rates of a process are made from: its start and its counters.
// Small, so a sampler can keep it of every process from tick to tick.
struct ProcessCounters {
    Date started = 0.0;
    std::uint64_t cpuTimeNs = 0;
    std::optional<std::uint64_t> diskReadBytes;
    std::optional<std::uint64_t> diskWrittenBytes;
    std::optional<std::uint64_t> energyNJ;

    static ProcessCounters of(const ProcessRecord& record);
};

namespace Rates {

ProcessRates compute(const std::optional<ProcessRecord>& previous, const ProcessRecord& current,
                     const std::optional<NetworkBytes>& previousNetwork,
                     const std::optional<NetworkBytes>& currentNetwork, Seconds interval);

// The processor, disk and energy rates alone; previous: none for a process
// not read before.
ProcessRates compute(const ProcessCounters* previous, const ProcessCounters& current,
                     Seconds interval);

} // namespace Rates

} // namespace loadwarden
