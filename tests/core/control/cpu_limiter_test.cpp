#include "core/control/cpu_limiter.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(CPULimiter, StartsFromTheCurrentUseWhereItIsKnown) {
    EXPECT_DOUBLE_EQ(CPULimiter(50, std::nullopt).runShare, 0.5);
    EXPECT_DOUBLE_EQ(CPULimiter(50, 200).runShare, 0.25); // four cores' worth of work
    EXPECT_DOUBLE_EQ(CPULimiter(50, 0).runShare, 0.5);    // 0 says nothing
    EXPECT_DOUBLE_EQ(CPULimiter(5, 400).runShare, 0.05);  // never below 5 ms a period
    // Above one core and unknown: never stopped at all.
    const CPULimiter generous(150, std::nullopt);
    EXPECT_DOUBLE_EQ(generous.runShare, 1.0);
    EXPECT_DOUBLE_EQ(generous.stopTime(), 0.0);
    // Nothing below 1 % of a core, whatever is asked.
    EXPECT_DOUBLE_EQ(CPULimiter(0, std::nullopt).limit, 1.0);
    EXPECT_DOUBLE_EQ(CPULimiter(-5, std::nullopt).limit, 1.0);
}

TEST(CPULimiter, MovesHalfwayTowardTheShareThatMeetsTheLimit) {
    CPULimiter overshooting(50, std::nullopt);
    overshooting.adjust(100);
    EXPECT_DOUBLE_EQ(overshooting.runShare, 0.375);
    // A group that hardly ran tells nothing of the ratio: let it run more.
    CPULimiter idle(50, std::nullopt);
    idle.adjust(0.3);
    EXPECT_DOUBLE_EQ(idle.runShare, 0.625);
    CPULimiter full(100, std::nullopt);
    full.adjust(0.0);
    EXPECT_DOUBLE_EQ(full.runShare, 1.0);
}

} // namespace
} // namespace loadwarden
