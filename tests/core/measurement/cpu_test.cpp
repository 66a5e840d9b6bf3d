#include "core/measurement/cpu.h"
#include "core/measurement/system_sample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

TEST(CoreUsage, ChangedCoreCountGivesZerosForEveryCurrentCore) {
    const std::vector<CPUTicks> eight(8, CPUTicks{10, 10, 10, 10});
    const std::vector<CPUTicks> ten(10, CPUTicks{20, 20, 20, 20});
    const auto usage = CPUMath::coreUsage(eight, ten);
    EXPECT_EQ(usage.size(), 10u);
    EXPECT_THAT(usage, Each(0.0));
    EXPECT_THAT(CPUMath::coreUsage({}, ten), Each(0.0));
}

TEST(CoreUsage, BusyShareOfTheTicksThatPassed) {
    const std::vector<CPUTicks> previous{{100, 50, 800, 50}, {0, 0, 0, 0}};
    // Core 0: 30 user + 10 system + 10 nice busy out of 100 ticks.
    const std::vector<CPUTicks> current{{130, 60, 850, 60}, {0, 0, 0, 0}};
    EXPECT_THAT(CPUMath::coreUsage(previous, current), ElementsAre(0.5, 0.0));
}

TEST(CoreUsage, CounterResetsAndFullyBusyCoresStayInRange) {
    const std::vector<CPUTicks> previous{{500, 0, 0, 0}, {0, 0, 100, 0}, {5, 5, 5, 5}};
    const std::vector<CPUTicks> current{
        {10, 0, 1000, 0}, // busy fell, total grew
        {400, 0, 100, 0}, // every tick busy
        {5, 5, 5, 5},     // no ticks passed
    };
    EXPECT_THAT(CPUMath::coreUsage(previous, current), ElementsAre(0.0, 1.0, 0.0));
    // Linux's iowait, counted as idle, can run backwards: the busy ticks then
    // outgrow the total, and the core still reads as full, not more.
    EXPECT_THAT(CPUMath::coreUsage({{0, 0, 100, 0}}, {{300, 0, 50, 0}}), ElementsAre(1.0));
}

TEST(CoreKinds, EfficiencyCoresComeFirstOnlyWhenTheLayoutAddsUp) {
    using enum CoreKind;
    EXPECT_THAT(CPUMath::coreKinds(4, 2, 2),
                ElementsAre(efficiency, efficiency, performance, performance));
    const auto tenCores = CPUMath::coreKinds(10, 8, 2);
    EXPECT_EQ(std::count(tenCores.begin(), tenCores.begin() + 2, efficiency), 2);
    EXPECT_EQ(std::count(tenCores.begin() + 2, tenCores.end(), performance), 8);
    EXPECT_THAT(CPUMath::coreKinds(10, 8, 3), Each(standard));
    EXPECT_THAT(CPUMath::coreKinds(8, 0, 8), Each(standard));
    EXPECT_EQ(CPUMath::coreKinds(8, 0, 8).size(), 8u);
    EXPECT_TRUE(CPUMath::coreKinds(0, 0, 0).empty());
}

TEST(CoreKindsDeathTest, NegativeTotalIsAProgrammingError) {
    EXPECT_DEATH(CPUMath::coreKinds(-1, 0, 0), "negative core count");
}

TEST(CoreAverage, CountsOnlyCoresWithAMatchingKind) {
    using enum CoreKind;
    const std::vector<double> usage{0.5, 0.25, 1.0};
    const std::vector<CoreKind> kinds{efficiency, performance};
    EXPECT_DOUBLE_EQ(CPUMath::average(usage, kinds, efficiency), 0.5);
    EXPECT_DOUBLE_EQ(CPUMath::average(usage, kinds, std::nullopt), 0.375);
    EXPECT_DOUBLE_EQ(CPUMath::average(usage, kinds, standard), 0.0);
    EXPECT_DOUBLE_EQ(CPUMath::average({}, {}, std::nullopt), 0.0);
    EXPECT_EQ(SystemSample{}.cpu(), 0.0); // no cores read yet
}

} // namespace
} // namespace loadwarden
