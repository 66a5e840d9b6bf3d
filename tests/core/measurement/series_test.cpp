#include "core/measurement/series.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace loadwarden {
namespace {

using ::testing::ElementsAre;

TEST(Series, KeepsTheNewestValuesUpToItsCapacity) {
    Series series(Series::graphCapacity);
    for (int i = 1; i <= 61; ++i) {
        series.append(i);
    }
    ASSERT_EQ(series.values().size(), 60u);
    EXPECT_EQ(series.values().front(), 2.0);
    EXPECT_EQ(series.values().back(), 61.0);
}

TEST(Series, ConstructionKeepsTheLastInitialValues) {
    EXPECT_THAT(Series(2, {1, 2, 3}).values(), ElementsAre(2, 3));
    EXPECT_THAT(Series(5, {1, 2}).values(), ElementsAre(1, 2));
    const Series tiny(0);
    EXPECT_EQ(tiny.capacity(), 1u);
}

TEST(Series, NonFiniteValuesAreStoredAsZero) {
    Series series(3);
    series.append(std::numeric_limits<double>::infinity());
    series.append(std::nan(""));
    series.append(0.5);
    EXPECT_THAT(series.values(), ElementsAre(0.0, 0.0, 0.5));
}

} // namespace
} // namespace loadwarden
