#include "core/model/machine_summary.h"

#include "core/text/units_format.h"

namespace loadwarden {

std::string machineSummary(std::size_t processes, const SystemSample& sample) {
    const MemoryStats& memory = sample.memory;
    return std::to_string(processes) + (processes == 1 ? " process" : " processes") + " · CPU " +
           formatPercent(sample.cpu() * 100.0) + " · Memory " + formatBytes(memory.used()) +
           " of " + formatBytes(memory.total);
}

} // namespace loadwarden
