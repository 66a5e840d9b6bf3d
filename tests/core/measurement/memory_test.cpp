#include "core/measurement/memory.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(MemoryPressure, KernelLevelsFoldIntoThreeAndOnlyTheirOwnIntegersAreStored) {
    using enum MemoryPressure;
    const std::pair<int, MemoryPressure> cases[] = {{1, normal},   {2, warning},  {3, warning},
                                                    {4, critical}, {5, critical}, {0, normal},
                                                    {-1, normal}};
    for (const auto& [level, expected] : cases) {
        EXPECT_EQ(memoryPressureFromKernelLevel(level), expected) << "level " << level;
    }
    EXPECT_EQ(memoryPressureFromRawValue(2), warning);
    for (int raw : {0, 3, 5}) {
        EXPECT_FALSE(memoryPressureFromRawValue(raw)) << raw;
    }
}

MemoryStats::PageCounts typicalCounts() {
    return {.pageSize = 16384,
            .totalBytes = 16ull << 30,
            .internal = 300000,
            .purgeable = 20000,
            .wired = 100000,
            .compressor = 50000,
            .external = 80000,
            .swapUsedBytes = 1ull << 30,
            .swapTotalBytes = 2ull << 30,
            .pressureLevel = 2};
}

TEST(MemoryStats, FromPageCounts) {
    const auto stats = MemoryStats::fromPageCounts(typicalCounts());
    EXPECT_EQ(stats.app, 280000ull * 16384);
    EXPECT_EQ(stats.wired, 100000ull * 16384);
    EXPECT_EQ(stats.compressed, 50000ull * 16384);
    EXPECT_EQ(stats.cached, 100000ull * 16384);
    EXPECT_EQ(stats.used(), 430000ull * 16384);
    EXPECT_EQ(stats.swapUsed, 1ull << 30);
    EXPECT_EQ(stats.pressure, MemoryPressure::warning);
    EXPECT_NEAR(stats.usedFraction(), 430000.0 * 16384 / (16ull << 30), 1e-12);

    // Purgeable pages beyond the internal ones leave no app memory, not a wrap.
    auto counts = typicalCounts();
    counts.purgeable = counts.internal + 1;
    EXPECT_EQ(MemoryStats::fromPageCounts(counts).app, 0u);
}

TEST(MemoryStats, UsedFractionStaysWithinZeroAndOne) {
    MemoryStats stats{.total = 0, .app = 100};
    EXPECT_EQ(stats.usedFraction(), 0.0);
    stats.total = 50;
    EXPECT_EQ(stats.usedFraction(), 1.0);
}

} // namespace
} // namespace loadwarden
