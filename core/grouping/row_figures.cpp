#include "core/grouping/row_figures.h"

#include "core/grouping/heat.h"
#include "core/text/units_format.h"

namespace loadwarden {

namespace {

Figure rate(std::optional<double> bytesPerSecond, Heat::Metric metric) {
    return {bytesPerSecond ? formatBytesPerSecond(*bytesPerSecond) : std::string(noFigure),
            Heat::level(bytesPerSecond, metric)};
}

RowFigures figures(double cpu, std::uint64_t memory, std::optional<double> energy,
                   std::optional<double> disk, std::optional<double> network,
                   std::optional<double> gpu) {
    return {{
        {formatPercent(cpu), Heat::level(cpu, Heat::Metric::cpu)},
        {formatBytes(memory), Heat::level(static_cast<double>(memory), Heat::Metric::memory)},
        {energy ? formatWatts(*energy) : std::string(noFigure),
         Heat::level(energy, Heat::Metric::energy)},
        rate(disk, Heat::Metric::disk),
        rate(network, Heat::Metric::network),
        {gpu ? formatPercent(*gpu) : std::string(noFigure), Heat::level(gpu, Heat::Metric::gpu)},
    }};
}

} // namespace

RowFigures groupFigures(const ProcessGroup& group) {
    return figures(group.totalCPU(), group.totalMemory(), group.totalEnergy(), group.totalDisk(),
                   group.totalNetwork(), group.totalGPU());
}

RowFigures memberFigures(const LiveProcess& member) {
    return figures(member.rates.cpuPercent, member.record.memoryBytes, member.rates.energyWatts,
                   member.rates.diskBytesPerSecond, networkTotal(member.rates),
                   member.rates.gpuPercent);
}

} // namespace loadwarden
