#pragma once

#include "core/foundation/date.h"
#include "core/measurement/measurement_json.h"
#include "core/measurement/process_record.h"
#include "core/measurement/system_sample.h"

#include <vector>

namespace loadwarden {

// What one sampler tick returns.
struct Snapshot {
    Date date = 0.0;
    Seconds interval = 0.0; // since the previous tick; 0 on the first
    std::vector<LiveProcess> processes;
    SystemSample system;
    bool hasNetwork = false; // per-process network figures were available

    bool operator==(const Snapshot&) const = default;
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Snapshot, date, interval, processes, system,
                                                hasNetwork)

} // namespace loadwarden
