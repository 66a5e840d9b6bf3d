#include "core/text/text_parsing.h"

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

} // namespace
} // namespace loadwarden
