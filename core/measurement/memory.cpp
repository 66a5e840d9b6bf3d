#include "core/measurement/memory.h"

#include "core/foundation/checked_arithmetic.h"

#include <algorithm>

namespace loadwarden {

std::optional<MemoryPressure> memoryPressureFromRawValue(int raw) {
    switch (raw) {
    case 1:
    case 2:
    case 4:
        return static_cast<MemoryPressure>(raw);
    default:
        return std::nullopt;
    }
}

MemoryPressure memoryPressureFromKernelLevel(int level) {
    if (level >= 4) {
        return MemoryPressure::critical;
    }
    if (level >= 2) {
        return MemoryPressure::warning;
    }
    return MemoryPressure::normal;
}

std::string_view label(MemoryPressure pressure) {
    switch (pressure) {
    case MemoryPressure::normal:
        return "Normal";
    case MemoryPressure::warning:
        return "High";
    case MemoryPressure::critical:
        return "Critical";
    }
    return {};
}

MemoryStats MemoryStats::fromPageCounts(const PageCounts& counts) {
    const std::uint64_t appPages = counterDelta(counts.purgeable, counts.internal);
    return MemoryStats{
        .total = counts.totalBytes,
        .app = checkedMultiply(appPages, counts.pageSize),
        .wired = checkedMultiply(counts.wired, counts.pageSize),
        .compressed = checkedMultiply(counts.compressor, counts.pageSize),
        .cached = checkedMultiply(checkedAdd(counts.external, counts.purgeable), counts.pageSize),
        .swapUsed = counts.swapUsedBytes,
        .swapTotal = counts.swapTotalBytes,
        .pressure = memoryPressureFromKernelLevel(counts.pressureLevel),
    };
}

std::uint64_t MemoryStats::used() const {
    return checkedAdd(checkedAdd(app, wired), compressed);
}

double MemoryStats::usedFraction() const {
    if (total == 0) {
        return 0.0;
    }
    return std::min(static_cast<double>(used()) / static_cast<double>(total), 1.0);
}

} // namespace loadwarden
