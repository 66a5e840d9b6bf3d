#include "core/measurement/sampling_plan.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(SamplingPlan, IntervalsBelowOneSecondCountAsOne) {
    const SamplingPlan visible{.windowVisible = true, .interval = 0.5};
    EXPECT_EQ(visible.tickInterval(), 1.0);
    EXPECT_EQ(visible.processInterval(), 1.0);
    const SamplingPlan hidden{.windowVisible = false, .interval = 0.5};
    EXPECT_EQ(hidden.tickInterval(), 5.0);
    EXPECT_EQ(hidden.processInterval(), 15.0);
    EXPECT_EQ((SamplingPlan{.windowVisible = false, .interval = 30}.tickInterval()), 30.0);
}

TEST(SamplingPlan, HiddenFullSampleFallsOnTheNearestTick) {
    const SamplingPlan hidden{.windowVisible = false, .interval = 2};
    EXPECT_TRUE(hidden.isFullSampleDue(std::nullopt, 100));
    // Ticks every 5 s after a full sample at 100: the third one is full.
    EXPECT_FALSE(hidden.isFullSampleDue(100, 105));
    EXPECT_FALSE(hidden.isFullSampleDue(100, 110));
    EXPECT_FALSE(hidden.isFullSampleDue(100, 112.4));
    EXPECT_TRUE(hidden.isFullSampleDue(100, 112.5));
    EXPECT_TRUE(hidden.isFullSampleDue(100, 115));

    EXPECT_FALSE((SamplingPlan{.windowVisible = false, .interval = 10}.isFullSampleDue(0, 9.9)));
    EXPECT_TRUE((SamplingPlan{.windowVisible = false, .interval = 10}.isFullSampleDue(0, 10)));
    EXPECT_FALSE((SamplingPlan{.windowVisible = false, .interval = 30}.isFullSampleDue(0, 14.9)));
    EXPECT_TRUE((SamplingPlan{.windowVisible = false, .interval = 30}.isFullSampleDue(0, 15)));
    EXPECT_TRUE((SamplingPlan{.windowVisible = true, .interval = 30}.isFullSampleDue(0, 0)));
}

TEST(SamplingPlan, NetworkCadenceFollowsWhatIsShown) {
    const SamplingPlan shown{.windowVisible = true, .networkShown = true, .interval = 2};
    EXPECT_EQ(shown.networkInterval(), 6.0);
    EXPECT_EQ(shown.networkInterval(4), 24.0);
    EXPECT_EQ(shown.networkStaleAfter(4), 58.0);
    EXPECT_EQ((SamplingPlan{.windowVisible = true, .networkShown = true, .interval = 9}
                   .networkInterval()),
              9.0);
    EXPECT_EQ((SamplingPlan{.windowVisible = true, .networkShown = false}.networkInterval()), 60.0);

    const SamplingPlan hidden{.windowVisible = false, .networkShown = true, .interval = 2};
    EXPECT_EQ(hidden.networkInterval(), 120.0);
    EXPECT_EQ(hidden.networkInterval(64), 600.0);
    EXPECT_EQ(hidden.networkStaleAfter(64), 1210.0);
}

} // namespace
} // namespace loadwarden
