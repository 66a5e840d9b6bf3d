#include "core/network/network_rates.h"

#include <cmath>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

NetworkBytes bytes(std::int32_t pid, const std::string& name, std::uint64_t in, std::uint64_t out) {
    return NetworkBytes{.pid = pid, .name = name, .bytesIn = in, .bytesOut = out};
}

TEST(NetworkRates, PerSecondGrowthOfTheSameProcessOnly) {
    const NetworkSample previous{{10, bytes(10, "curl", 1000, 500)},
                                 {11, bytes(11, "gone", 1, 1)},
                                 {12, bytes(12, "old", 100, 100)},
                                 {13, bytes(13, "reset", 9000, 9000)}};
    const NetworkSample current{{10, bytes(10, "curl", 5000, 1500)},
                                {12, bytes(12, "new", 900, 900)},
                                {13, bytes(13, "reset", 10, 9500)},
                                {14, bytes(14, "fresh", 1'000'000, 1'000'000)}};
    const NetworkRateMap rates = NetworkRates::compute(previous, current, 2.0);
    EXPECT_EQ(rates, (NetworkRateMap{{10, {2000, 500}},
                                     {12, {0, 0}}, // pid reused by another program
                                     {13, {0, 250}},
                                     {14, {0, 0}}}));
}

TEST(NetworkRates, NoIntervalGivesNoRates) {
    const NetworkSample sample{{1, bytes(1, "a", 1, 1)}};
    EXPECT_TRUE(NetworkRates::compute({}, sample, 0.0).empty());
    EXPECT_TRUE(NetworkRates::compute({}, sample, -1.0).empty());
    EXPECT_TRUE(NetworkRates::compute({}, sample, std::nan("")).empty());
}

} // namespace
} // namespace loadwarden
