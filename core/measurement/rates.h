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

namespace Rates {

ProcessRates compute(const std::optional<ProcessRecord>& previous, const ProcessRecord& current,
                     const std::optional<NetworkBytes>& previousNetwork,
                     const std::optional<NetworkBytes>& currentNetwork, Seconds interval);

} // namespace Rates

} // namespace loadwarden
