// Text shared by all: numbers read from text, UTF-8 repair, units and durations.
#include "core/text/duration_format.h"
#include "core/text/text_parsing.h"
#include "core/text/units_format.h"
#include "core/text/utf8_repair.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace loadwarden {
namespace {

TEST(ParseDecimal, DigitsPastTheRangeOfADoubleAreNoFigure) {
    // A garbled /proc/uptime or interval must not read as an endless time.
    const std::string garbled(400, '9');
    EXPECT_FALSE(parseDecimal(garbled));
    EXPECT_FALSE(parseDecimal(garbled + ".25"));
    EXPECT_DOUBLE_EQ(*parseDecimal("8953.17"), 8953.17);
    EXPECT_EQ(parseDecimal(std::string(300, '0') + "42.5"), 42.5);
}

TEST(RepairUTF8, KeepsValidTextAndReplacesEachMaximalInvalidPartOnce) {
    const std::string valid = "a \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(repairUTF8(valid), valid);
    EXPECT_EQ(repairUTF8(std::string_view("a\0b", 3)), std::string("a\0b", 3));

    const std::string r = "\xEF\xBF\xBD";
    EXPECT_EQ(repairUTF8("x\xFFy"), "x" + r + "y");
    // A truncated sequence is one error, and the byte that cut it is kept.
    EXPECT_EQ(repairUTF8("\xE2\x82"
                         "A"),
              r + "A");
    EXPECT_EQ(repairUTF8("end\xF0\x9F\x98"), "end" + r);
    // Overlong forms, surrogates and code points past U+10FFFF are refused
    // byte by byte, as their second byte is already out of range.
    EXPECT_EQ(repairUTF8("\xC0\xAF"), r + r);
    EXPECT_EQ(repairUTF8("\xE0\x80\xAF"), r + r + r);
    EXPECT_EQ(repairUTF8("\xED\xA0\x80"), r + r + r);
    EXPECT_EQ(repairUTF8("\xF4\x90\x80\x80"), r + r + r + r);
    EXPECT_EQ(repairUTF8("\x80\x80"), r + r);
}

TEST(FormatBytes, DecimalUnitsWithOneDecimalBelowTen) {
    EXPECT_EQ(formatBytes(0), "0 bytes");
    EXPECT_EQ(formatBytes(1), "1 byte");
    EXPECT_EQ(formatBytes(999), "999 bytes");
    EXPECT_EQ(formatBytes(1000), "1 KB");
    EXPECT_EQ(formatBytes(1'500'000'000), "1.5 GB");
    EXPECT_EQ(formatBytes(12'340'000), "12 MB");
    EXPECT_EQ(formatBytes(999'600), "1 MB"); // never "1000 KB"
    EXPECT_EQ(formatBytes(9'960'000), "10 MB");
    EXPECT_EQ(formatBytes(UINT64_MAX), "18 EB");
}

TEST(FormatRatesAndPercents, ReadLikeTheirUnits) {
    EXPECT_EQ(formatBytesPerSecond(1'540), "1.5 KB/s");
    EXPECT_EQ(formatBytesPerSecond(-5), "0 bytes/s");
    EXPECT_EQ(formatPercent(45.2), "45%");
    EXPECT_EQ(formatPercent(0.46), "0.5%");
    EXPECT_EQ(formatPercent(230), "230%");
    EXPECT_EQ(formatPercent(std::nan("")), "0%");
}

TEST(AbbreviatedDuration, AtMostTwoUnitsLargestFirst) {
    EXPECT_EQ(abbreviatedDuration(59), "59s");
    EXPECT_EQ(abbreviatedDuration(3599), "59m 59s");
    EXPECT_EQ(abbreviatedDuration(3900), "1h 5m");
    EXPECT_EQ(abbreviatedDuration(3600 + 59), "1h"); // seconds are not shown from an hour up
    EXPECT_EQ(abbreviatedDuration(2 * 86400 + 3 * 3600 + 25 * 60), "2d 3h");
    EXPECT_EQ(abbreviatedDuration(86400 + 60), "1d"); // the zero hour still takes the second place
    EXPECT_EQ(abbreviatedDuration(0), "0s");
    EXPECT_EQ(abbreviatedDuration(-30), "0s");
}

} // namespace
} // namespace loadwarden
