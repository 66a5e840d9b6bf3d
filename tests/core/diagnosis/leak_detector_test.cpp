#include "core/diagnosis/leak_detector.h"

#include <cmath>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

constexpr Date launch = 1'700'000'000.0;
constexpr double GB = 1e9;
constexpr double MB = 1e6;

// One reading a minute from launch, rising in a straight line.
std::vector<MemoryPoint> steadyRise(double from, double by, int minutes) {
    std::vector<MemoryPoint> points;
    for (int minute = 0; minute <= minutes; ++minute) {
        points.push_back({launch + minute * 60.0, from + by * minute / minutes});
    }
    return points;
}

TEST(LeakDetectorTrend, NeedsThreePointsSpreadOverTimeAndAFlatSeriesExplainsNothing) {
    EXPECT_FALSE(LeakDetector::trend({{launch, 1 * GB}, {launch + 3600, 9 * GB}}));
    EXPECT_FALSE(LeakDetector::trend({{launch, 1 * GB}, {launch, 2 * GB}, {launch, 3 * GB}}));
    const auto flat = LeakDetector::trend(steadyRise(2 * GB, 0, 60));
    ASSERT_TRUE(flat);
    EXPECT_EQ(flat->slopePerHour, 0);
    EXPECT_EQ(flat->rSquared, 0);
}

TEST(LeakDetectorTrend, FitsTheLineThroughRealDates) {
    const auto trend = LeakDetector::trend(steadyRise(1 * GB, 1 * GB, 40));
    ASSERT_TRUE(trend);
    EXPECT_NEAR(trend->slopePerHour, 1.5 * GB, 1);
    EXPECT_NEAR(trend->rSquared, 1.0, 1e-12);
    EXPECT_NEAR(trend->growth, 1 * GB, 1);
    EXPECT_DOUBLE_EQ(trend->span, 2400);
    EXPECT_NEAR(trend->start, 1 * GB, 1);
}

TEST(LeakDetectorLeak, GrowthMustLastHalfAnHourAndBeLargeInBytesAndRelativeToTheStart) {
    EXPECT_TRUE(LeakDetector::leak(steadyRise(1 * GB, 1 * GB, 40)));
    EXPECT_FALSE(LeakDetector::leak(steadyRise(1 * GB, 1 * GB, 29)));
    // A clean line, but 400 MB is below the floor.
    EXPECT_FALSE(LeakDetector::leak(steadyRise(1 * GB, 400 * MB, 60)));
    // A 2 GB app must gain half of itself: 800 MB is not enough, 1 GB is.
    EXPECT_FALSE(LeakDetector::leak(steadyRise(2 * GB, 800 * MB, 60)));
    EXPECT_TRUE(LeakDetector::leak(steadyRise(2 * GB, 1 * GB, 60)));
    // For a 600 MB app the 500 MB floor is the larger demand.
    EXPECT_TRUE(LeakDetector::leak(steadyRise(600 * MB, 550 * MB, 60)));
    // A line fitted from zero counts as relative growth by default.
    EXPECT_TRUE(LeakDetector::leak(steadyRise(0, 600 * MB, 60)));
}

TEST(LeakDetectorLeak, FallingOrNoisyMemoryIsNoLeak) {
    EXPECT_FALSE(LeakDetector::leak(steadyRise(3 * GB, -1 * GB, 60)));

    auto noisy = steadyRise(1 * GB, 2 * GB, 60);
    ASSERT_TRUE(LeakDetector::leak(noisy));
    for (std::size_t i = 0; i < noisy.size(); ++i) {
        noisy[i].bytes += (i % 2 == 0 ? 1 : -1) * 450 * MB; // sawtooth around the line
    }
    const auto trend = LeakDetector::trend(noisy);
    ASSERT_TRUE(trend);
    EXPECT_GT(trend->growth, 1.5 * GB);
    EXPECT_LT(trend->rSquared, 0.85);
    EXPECT_FALSE(LeakDetector::leak(noisy));
}

} // namespace
} // namespace loadwarden
