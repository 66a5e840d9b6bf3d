#pragma once

#include "core/foundation/date.h"
#include "core/measurement/network_bytes.h"
#include "core/measurement/process_record.h"

#include <optional>

namespace loadwarden {

namespace ProcessIdentity {

// A process is known across ticks by its pid and start time; an unknown (0)
// start time never breaks the match, a reused pid always does.
bool sameStart(const ProcessRecord& a, const ProcessRecord& b);
bool sameProcess(const ProcessRecord& a, const ProcessRecord& b);

} // namespace ProcessIdentity

namespace Rates {

ProcessRates compute(const std::optional<ProcessRecord>& previous, const ProcessRecord& current,
                     const std::optional<NetworkBytes>& previousNetwork,
                     const std::optional<NetworkBytes>& currentNetwork, Seconds interval);

} // namespace Rates

} // namespace loadwarden
