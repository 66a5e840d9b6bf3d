// The battery as the system's power sources describe it, and its status line.
#include "core/measurement/battery.h"
#include "core/measurement/power_source.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(PowerSource, BatteryFromTheSystemsFigures) {
    const auto battery = batteryInfoFromPowerSource({.currentCapacity = 80,
                                                     .maxCapacity = 100,
                                                     .minutesToEmpty = 95,
                                                     .powerSourceState = "Battery Power",
                                                     .cycleCount = 312,
                                                     .rawMaxCapacity = 4800,
                                                     .designCapacity = 5000});
    EXPECT_DOUBLE_EQ(battery.percent, 0.8);
    EXPECT_TRUE(battery.onBattery);
    EXPECT_FALSE(battery.charging);
    EXPECT_EQ(battery.minutesLeft, 95);
    EXPECT_EQ(battery.cycleCount, 312);
    EXPECT_DOUBLE_EQ(*battery.health, 0.96);
}

TEST(PowerSource, MissingAndOddFigures) {
    // A missing maximum reads as a percentage of 100.
    EXPECT_DOUBLE_EQ(batteryInfoFromPowerSource({.currentCapacity = 42}).percent, 0.42);
    EXPECT_EQ(batteryInfoFromPowerSource({.currentCapacity = 42, .maxCapacity = 0}).percent, 0.0);
    // -1 while the system is still estimating; a battery above design is healthy, not more.
    const auto odd = batteryInfoFromPowerSource({.minutesToEmpty = -1,
                                                 .isCharging = true,
                                                 .powerSourceState = "AC Power",
                                                 .rawMaxCapacity = 5200,
                                                 .designCapacity = 5000});
    EXPECT_FALSE(odd.minutesLeft);
    EXPECT_TRUE(odd.charging);
    EXPECT_FALSE(odd.onBattery);
    EXPECT_EQ(odd.health, 1.0);
    EXPECT_FALSE(batteryInfoFromPowerSource({.rawMaxCapacity = 5200, .designCapacity = 0}).health);
}

TEST(BatteryStatusLine, ChargingThenTimeLeftThenWhereThePowerComesFrom) {
    EXPECT_EQ(batteryStatusLine(std::nullopt), "");
    BatteryInfo battery{.percent = 0.8, .charging = true, .onBattery = true, .minutesLeft = 65};
    EXPECT_EQ(batteryStatusLine(battery), "Charging");
    battery.charging = false;
    EXPECT_EQ(batteryStatusLine(battery), "1h 5m left");
    battery.minutesLeft = -3;
    EXPECT_EQ(batteryStatusLine(battery), "0s left");
    battery.minutesLeft.reset();
    EXPECT_EQ(batteryStatusLine(battery), "On battery");
    battery.onBattery = false;
    EXPECT_EQ(batteryStatusLine(battery), "On power adapter");
}

} // namespace
} // namespace loadwarden
