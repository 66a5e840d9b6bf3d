#include "core/measurement/rates.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

ProcessRecord record(Date started, std::uint64_t cpuTimeNs) {
    return ProcessRecord{.pid = 42,
                         .started = started,
                         .cpuTimeNs = cpuTimeNs,
                         .diskReadBytes = 1000,
                         .diskWrittenBytes = 500,
                         .energyNJ = 1'000'000'000};
}

TEST(Rates, PerSecondDeltasOfTheSameProcess) {
    const auto previous = record(1000.5, 1'000'000'000);
    auto current = record(1000.5, 3'000'000'000);
    current.diskReadBytes = 3000;
    current.diskWrittenBytes = 2500;
    current.energyNJ = 6'000'000'000;
    const auto rates = Rates::compute(previous, current, std::nullopt, std::nullopt, 2.0);
    EXPECT_DOUBLE_EQ(rates.cpuPercent, 100.0);
    EXPECT_EQ(rates.diskBytesPerSecond, 2000.0);
    EXPECT_EQ(rates.energyWatts, 2.5);
    EXPECT_FALSE(rates.networkInPerSecond);

    const auto twoCores =
        Rates::compute(previous, record(1000.5, 3'000'000'000), std::nullopt, std::nullopt, 1.0);
    EXPECT_DOUBLE_EQ(twoCores.cpuPercent, 200.0);
}

TEST(Rates, ReusedPidStartsAfreshButUnknownStartTimesStillMatch) {
    const auto reused = Rates::compute(record(1000.5, 1), record(2000.25, 900'000'000'000),
                                       std::nullopt, std::nullopt, 1.0);
    EXPECT_EQ(reused.cpuPercent, 0.0);
    EXPECT_EQ(reused.diskBytesPerSecond, 0.0);
    EXPECT_EQ(reused.energyWatts, 0.0);

    const auto unknownStart =
        Rates::compute(record(0, 0), record(2000.25, 500'000'000), std::nullopt, std::nullopt, 1.0);
    EXPECT_DOUBLE_EQ(unknownStart.cpuPercent, 50.0);
}

TEST(Rates, CountersRunningBackwardsGiveZeroNotAHugeJump) {
    auto current = record(1, 0);
    current.diskReadBytes = 0;
    const auto rates =
        Rates::compute(record(1, 5'000'000'000), current, std::nullopt, std::nullopt, 1.0);
    EXPECT_EQ(rates.cpuPercent, 0.0);
    EXPECT_EQ(rates.diskBytesPerSecond, 0.0);
}

TEST(Rates, AbsentCountersStayAbsent) {
    auto current = record(1, 0);
    current.diskWrittenBytes.reset();
    current.energyNJ.reset();
    const auto withPrevious =
        Rates::compute(record(1, 0), current, std::nullopt, std::nullopt, 1.0);
    EXPECT_FALSE(withPrevious.diskBytesPerSecond);
    EXPECT_FALSE(withPrevious.energyWatts);
    const auto first = Rates::compute(std::nullopt, current, std::nullopt, std::nullopt, 1.0);
    EXPECT_FALSE(first.diskBytesPerSecond);
    EXPECT_FALSE(first.energyWatts);
}

TEST(Rates, ZeroIntervalGivesNothing) {
    const NetworkBytes network{.pid = 42, .name = "x", .bytesIn = 10, .bytesOut = 10};
    const auto rates =
        Rates::compute(record(1, 0), record(1, 9'000'000'000), network, network, 0.0);
    EXPECT_EQ(rates, ProcessRates{});
}

TEST(Rates, NetworkNeedsTheSameProcessOnBothSides) {
    const NetworkBytes before{.pid = 42, .name = "curl", .bytesIn = 1000, .bytesOut = 100};
    const NetworkBytes after{.pid = 42, .name = "curl", .bytesIn = 5000, .bytesOut = 50};
    const auto rates = Rates::compute(record(7, 0), record(7, 0), before, after, 2.0);
    EXPECT_EQ(rates.networkInPerSecond, 2000.0);
    EXPECT_EQ(rates.networkOutPerSecond, 0.0);

    const auto noPrevious = Rates::compute(record(7, 0), record(7, 0), std::nullopt, after, 2.0);
    EXPECT_EQ(noPrevious.networkInPerSecond, 0.0);
    EXPECT_EQ(noPrevious.networkOutPerSecond, 0.0);

    const auto otherPid = Rates::compute(record(7, 0), record(7, 0),
                                         NetworkBytes{.pid = 43, .bytesIn = 0}, after, 2.0);
    EXPECT_EQ(otherPid.networkInPerSecond, 0.0);

    const auto reused = Rates::compute(record(7, 0), record(8, 0), before, after, 2.0);
    EXPECT_EQ(reused.networkInPerSecond, 0.0);

    const auto noCurrent = Rates::compute(record(7, 0), record(7, 0), before, std::nullopt, 2.0);
    EXPECT_FALSE(noCurrent.networkInPerSecond);
    EXPECT_FALSE(noCurrent.networkOutPerSecond);
}

} // namespace
} // namespace loadwarden
