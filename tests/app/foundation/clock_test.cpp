#include "app/foundation/clock.h"

#include <ctime>
#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(Clock, CurrentDateIsSecondsSince1970WithAFraction) {
    const Date before = static_cast<Date>(std::time(nullptr));
    const Date now = currentDate();
    EXPECT_GE(now, before);
    EXPECT_LT(now, before + 2.0);
}

} // namespace
} // namespace loadwarden
