#include "core/measurement/cpu.h"

#include "core/foundation/checked_arithmetic.h"
#include "core/foundation/programming_error.h"

#include <algorithm>
#include <cmath>

namespace loadwarden::CPUMath {

namespace {

std::uint64_t busyTicks(const CPUTicks& ticks) {
    return checkedAdd(checkedAdd(ticks.user, ticks.system), ticks.nice);
}

double usageBetween(const CPUTicks& previous, const CPUTicks& current) {
    const std::uint64_t previousBusy = busyTicks(previous);
    const std::uint64_t currentBusy = busyTicks(current);
    const std::uint64_t previousTotal = checkedAdd(previousBusy, previous.idle);
    const std::uint64_t currentTotal = checkedAdd(currentBusy, current.idle);
    if (currentTotal <= previousTotal) {
        return 0.0;
    }
    const double usage = static_cast<double>(counterDelta(previousBusy, currentBusy)) /
                         static_cast<double>(currentTotal - previousTotal);
    if (!(usage >= 0.0)) {
        return 0.0;
    }
    return std::min(usage, 1.0);
}

} // namespace

std::vector<double> coreUsage(const std::vector<CPUTicks>& previous,
                              const std::vector<CPUTicks>& current) {
    std::vector<double> usage(current.size(), 0.0);
    if (previous.size() != current.size()) {
        return usage;
    }
    for (std::size_t core = 0; core < current.size(); ++core) {
        usage[core] = usageBetween(previous[core], current[core]);
    }
    return usage;
}

std::vector<CoreKind> coreKinds(int total, int performance, int efficiency) {
    require(total >= 0, "negative core count");
    if (performance >= 1 && efficiency >= 1 && performance + efficiency == total) {
        std::vector<CoreKind> kinds(static_cast<std::size_t>(efficiency), CoreKind::efficiency);
        kinds.insert(kinds.end(), static_cast<std::size_t>(performance), CoreKind::performance);
        return kinds;
    }
    return std::vector<CoreKind>(static_cast<std::size_t>(total), CoreKind::standard);
}

double average(const std::vector<double>& usage, const std::vector<CoreKind>& kinds,
               std::optional<CoreKind> kind) {
    double sum = 0.0;
    std::size_t kept = 0;
    const std::size_t count = std::min(usage.size(), kinds.size());
    for (std::size_t core = 0; core < count; ++core) {
        if (!kind || kinds[core] == *kind) {
            sum += usage[core];
            ++kept;
        }
    }
    return kept == 0 ? 0.0 : sum / static_cast<double>(kept);
}

} // namespace loadwarden::CPUMath
