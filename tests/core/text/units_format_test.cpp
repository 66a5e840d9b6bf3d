#include "core/text/units_format.h"

#include <cmath>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(FormatBytes, DecimalUnitsWithOneDecimalBelowTen) {
    EXPECT_EQ(formatBytes(0), "0 bytes");
    EXPECT_EQ(formatBytes(1), "1 byte");
    EXPECT_EQ(formatBytes(999), "999 bytes");
    EXPECT_EQ(formatBytes(1000), "1 KB");
    EXPECT_EQ(formatBytes(340'000), "340 KB");
    EXPECT_EQ(formatBytes(1'500'000'000), "1.5 GB");
    EXPECT_EQ(formatBytes(12'340'000), "12 MB");
    EXPECT_EQ(formatBytes(999'600), "1 MB"); // never "1000 KB"
    EXPECT_EQ(formatBytes(9'960'000), "10 MB");
    EXPECT_EQ(formatBytes(UINT64_MAX), "18 EB");
}

TEST(FormatRatesAndPercents, ReadLikeTheirUnits) {
    EXPECT_EQ(formatBytesPerSecond(12'000'000), "12 MB/s");
    EXPECT_EQ(formatBytesPerSecond(1'540), "1.5 KB/s");
    EXPECT_EQ(formatBytesPerSecond(-5), "0 bytes/s");
    EXPECT_EQ(formatPercent(45.2), "45%");
    EXPECT_EQ(formatPercent(0.46), "0.5%");
    EXPECT_EQ(formatPercent(230), "230%");
    EXPECT_EQ(formatPercent(std::nan("")), "0%");
}

} // namespace
} // namespace loadwarden
