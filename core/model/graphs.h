#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/measurement/series.h"
#include "core/measurement/system_sample.h"

#include <tuple>
#include <vector>

namespace loadwarden {

// The last minute or so of every system figure the Performance tab draws,
// one value per refresh.
struct Graphs {
    Series cpu;
    std::vector<Series> cores; // one per logical core
    Series memory;             // used fraction
    Series swap;               // bytes
    Series gpu;                // 0 when the system gives no figure
    Series diskRead;
    Series diskWrite;
    Series netIn;
    Series netOut;
    Series battery; // charge fraction; 0 without a battery
    Series energy;  // watts of every process together
    // When the readings were taken: `quickReadAt` for the processor and
    // memory, which a quick sample refreshes too, `readAt` for the others.
    // Each lines up with its series from the newest reading back.
    Series readAt;
    Series quickReadAt;

    // Every figure but energy, which the tick appends itself. A change in the
    // number of cores starts the per-core series afresh rather than mixing cores.
    void record(const SystemSample& sample, Date at);
    // The two figures a quick sample refreshes.
    void recordLight(const SystemSample& sample, Date at);

    bool operator==(const Graphs&) const = default;
    auto fields() const {
        return std::tie(cpu, cores, memory, swap, gpu, diskRead, diskWrite, netIn, netOut, battery,
                        energy, readAt, quickReadAt);
    }
};

} // namespace loadwarden
