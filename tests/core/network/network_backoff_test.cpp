#include "core/network/network_backoff.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(NetworkBackoff, GrowsAfterCostlyOrKilledRunsAndShrinksAfterCheapOnes) {
    NetworkBackoff backoff;
    EXPECT_EQ(backoff, (NetworkBackoff{.factor = 1.0, .lastCost = std::nullopt}));

    backoff.record(false, 0.3);
    EXPECT_EQ(backoff, (NetworkBackoff{.factor = 2.0, .lastCost = 0.3}));
    backoff.record(false, 0.25); // at the threshold still counts as cheap
    EXPECT_EQ(backoff.factor, 1.0);
    backoff.record(true, 0.0); // killed, even though cheap
    EXPECT_EQ(backoff.factor, 4.0);
    backoff.record(true, 1.2);
    backoff.record(true, 1.2);
    EXPECT_EQ(backoff.factor, 64.0);
    backoff.record(false, 2.0);
    EXPECT_EQ(backoff, (NetworkBackoff{.factor = 64.0, .lastCost = 2.0}));
    for (int run = 0; run < 8; ++run) {
        backoff.record(false, 0.1);
    }
    EXPECT_EQ(backoff, (NetworkBackoff{.factor = 1.0, .lastCost = 0.1}));
}

} // namespace
} // namespace loadwarden
