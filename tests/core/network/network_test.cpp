// Per-process network counters: nettop's output into samples, samples into
// rates, and the back-off of the tool that reads them.
#include "core/network/net_top_parser.h"
#include "core/network/network_backoff.h"
#include "core/network/network_rates.h"

#include <cmath>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

NetworkBytes bytes(std::int32_t pid, const std::string& name, std::uint64_t in, std::uint64_t out) {
    return NetworkBytes{.pid = pid, .name = name, .bytesIn = in, .bytesOut = out};
}

TEST(NetTopParser, TextArrivingInPiecesYieldsEachSampleOnceInOrder) {
    NetTopParser parser;
    EXPECT_TRUE(parser.feed(",bytes_in,bytes_out,\nlaunchd.1,10,").empty());
    EXPECT_TRUE(parser.feed("20,\nkernel_task.0,5,6,\n").empty());
    const auto samples = parser.feed(",bytes_in,bytes_out,\n"
                                     ",bytes_in,bytes_out,\n" // an empty block gives nothing
                                     "launchd.1,30,40,\n"
                                     "time,\n"
                                     "Safari.77,1,");
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[0], (NetworkSample{{0, bytes(0, "kernel_task", 5, 6)},
                                         {1, bytes(1, "launchd", 10, 20)}}));
    EXPECT_EQ(samples[1], (NetworkSample{{1, bytes(1, "launchd", 30, 40)}}));
    // The unfinished row waits for its line feed.
    const auto last = parser.feed("2,\ntime,\n");
    ASSERT_EQ(last.size(), 1u);
    EXPECT_EQ(last[0], (NetworkSample{{77, bytes(77, "Safari", 1, 2)}}));
}

TEST(NetTopParser, UnreadableLinesAreSkippedAndALaterRowOfAProcessReplacesAnEarlierOne) {
    NetTopParser parser;
    const auto samples = parser.feed("time,,bytes_in,bytes_out,\n"
                                     "12:00:00.1,com.example.agent.512,1,1,\n"
                                     "garbage\n"
                                     "12:00:00.1,nodot,1,2,\n"
                                     "12:00:00.1,name.x,1,2,\n"
                                     "12:00:00.1,name.-3,1,2,\n"
                                     "12:00:00.1,name.99999999999,1,2,\n"
                                     "12:00:00.1,name.5,,2,\n"
                                     "12:00:00.1,name.5,-1,2,\n"
                                     "12:00:00.1,name.5,1,2.5,\n"
                                     "name.5,1\n"
                                     "\n"
                                     "12:00:00.2,com.example.agent.512,7,9,\n"
                                     "time,\n");
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0], (NetworkSample{{512, bytes(512, "com.example.agent", 7, 9)}}));
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
