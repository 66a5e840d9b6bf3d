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

TEST(NetworkRates, APidReusedSinceTheFirstReadingInheritsNoTraffic) {
    // curl (pid 40) downloaded between the readings at 100 s and 106 s and
    // ended; a new curl started at 107 s under the same pid.
    const MeasuredNetworkRates rates{.since = 100.0, .byPID = {{40, {.in = 5e6, .out = 1e3}}}};
    const auto process = [](std::int32_t pid, Date started) {
        return ProcessRecord{.pid = pid, .name = "curl", .started = started};
    };
    EXPECT_EQ(NetworkRates::rateOf(rates, process(40, 99.5)), (NetworkRate{5e6, 1e3}));
    EXPECT_EQ(NetworkRates::rateOf(rates, process(40, 107.0)), NetworkRate{});
    EXPECT_EQ(NetworkRates::rateOf(rates, process(40, 0.0)), (NetworkRate{5e6, 1e3}))
        << "an unknown start time is taken on trust";
    EXPECT_FALSE(NetworkRates::rateOf(rates, process(41, 99.5))) << "never seen by the tool";
}

} // namespace
} // namespace loadwarden
