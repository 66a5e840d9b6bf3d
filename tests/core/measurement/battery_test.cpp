#include "core/measurement/battery.h"
#include "core/measurement/thermal.h"
#include "core/text/duration_format.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(AbbreviatedDuration, AtMostTwoUnitsLargestFirst) {
    EXPECT_EQ(abbreviatedDuration(270), "4m 30s");
    EXPECT_EQ(abbreviatedDuration(59), "59s");
    EXPECT_EQ(abbreviatedDuration(3599), "59m 59s");
    EXPECT_EQ(abbreviatedDuration(3900), "1h 5m");
    EXPECT_EQ(abbreviatedDuration(3600 + 59), "1h"); // seconds are not shown from an hour up
    EXPECT_EQ(abbreviatedDuration(7200), "2h");
    EXPECT_EQ(abbreviatedDuration(2 * 86400 + 3 * 3600 + 25 * 60), "2d 3h");
    EXPECT_EQ(abbreviatedDuration(86400 + 60), "1d"); // the zero hour still takes the second place
    EXPECT_EQ(abbreviatedDuration(0), "0s");
    EXPECT_EQ(abbreviatedDuration(-30), "0s");
}

TEST(BatteryStatusLine, TestsInOrder) {
    EXPECT_EQ(batteryStatusLine(std::nullopt), "");
    BatteryInfo battery{.percent = 0.8, .charging = true, .onBattery = true, .minutesLeft = 65};
    EXPECT_EQ(batteryStatusLine(battery), "Charging");
    battery.charging = false;
    EXPECT_EQ(batteryStatusLine(battery), "1h 5m left");
    battery.minutesLeft = 4;
    EXPECT_EQ(batteryStatusLine(battery), "4m left");
    battery.minutesLeft = -3;
    EXPECT_EQ(batteryStatusLine(battery), "0s left");
    battery.minutesLeft.reset();
    EXPECT_EQ(batteryStatusLine(battery), "On battery");
    battery.onBattery = false;
    EXPECT_EQ(batteryStatusLine(battery), "On power adapter");
}

TEST(ThermalLevel, LabelsAndRawValues) {
    EXPECT_EQ(label(ThermalLevel::nominal), "Normal");
    EXPECT_EQ(label(ThermalLevel::critical), "Very hot: slowed down");
    EXPECT_EQ(fromRawValue<ThermalLevel>("serious"), ThermalLevel::serious);
    EXPECT_LT(ThermalLevel::fair, ThermalLevel::serious);
}

} // namespace
} // namespace loadwarden
