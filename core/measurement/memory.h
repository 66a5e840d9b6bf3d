#pragma once

#include "core/foundation/hashing.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>

namespace loadwarden {

// Raw values are the kernel's own pressure levels; ordered by them.
enum class MemoryPressure : int { normal = 1, warning = 2, critical = 4 };

// Exactly 1, 2 or 4; anything else has no pressure value.
std::optional<MemoryPressure> memoryPressureFromRawValue(int raw);

// Never fails: a failed read arrives as 0 and counts as normal.
MemoryPressure memoryPressureFromKernelLevel(int level);

std::string_view label(MemoryPressure pressure);

struct MemoryStats {
    std::uint64_t total = 0;
    std::uint64_t app = 0;
    std::uint64_t wired = 0;
    std::uint64_t compressed = 0;
    std::uint64_t cached = 0;
    std::uint64_t swapUsed = 0;
    std::uint64_t swapTotal = 0;
    MemoryPressure pressure = MemoryPressure::normal;

    // Virtual-memory page counts as the kernel gives them; total and swap in bytes.
    struct PageCounts {
        std::uint64_t pageSize = 0;
        std::uint64_t totalBytes = 0;
        std::uint64_t internal = 0;
        std::uint64_t purgeable = 0;
        std::uint64_t wired = 0;
        std::uint64_t compressor = 0;
        std::uint64_t external = 0;
        std::uint64_t swapUsedBytes = 0;
        std::uint64_t swapTotalBytes = 0;
        int pressureLevel = 0;
    };
    static MemoryStats fromPageCounts(const PageCounts& counts);

    // Cached file pages are reclaimable and not counted as used.
    std::uint64_t used() const;
    double usedFraction() const;

    bool operator==(const MemoryStats&) const = default;
    auto fields() const {
        return std::tie(total, app, wired, compressed, cached, swapUsed, swapTotal, pressure);
    }
};

} // namespace loadwarden
