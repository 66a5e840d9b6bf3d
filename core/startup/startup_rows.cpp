#include "core/startup/startup_rows.h"

#include "core/foundation/checked_arithmetic.h"

#include <algorithm>

namespace loadwarden {

namespace {

bool runs(const LiveProcess& process, const std::string& program) {
    if (program.starts_with('/')) {
        return process.record.path == program;
    }
    return process.record.name == program;
}

} // namespace

std::vector<StartupRow> startupRows(const std::vector<StartupItem>& items,
                                    const std::vector<LiveProcess>& processes) {
    std::vector<StartupRow> rows;
    rows.reserve(items.size());
    for (const StartupItem& item : items) {
        std::optional<double> cpu;
        std::optional<std::uint64_t> memory;
        for (const LiveProcess& process : processes) {
            if (runs(process, item.program)) {
                cpu = cpu.value_or(0.0) + process.rates.cpuPercent;
                memory = checkedAdd(memory.value_or(0), process.record.memoryBytes);
            }
        }
        rows.push_back({item, item.impact(cpu, memory)});
    }
    return rows;
}

int heavyStartupItems(const std::vector<StartupRow>& rows) {
    return static_cast<int>(std::ranges::count_if(rows, [](const StartupRow& row) {
        return row.impact == StartupImpact::high;
    }));
}

} // namespace loadwarden
