#include "core/measurement/linux/power_supply.h"
#include "core/measurement/linux/thermal_zones.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

const PowerSupply laptopBattery =
    parsePowerSupplyUevent("POWER_SUPPLY_NAME=BAT0\n"
                           "POWER_SUPPLY_TYPE=Battery\n"
                           "POWER_SUPPLY_STATUS=Discharging\n"
                           "POWER_SUPPLY_CYCLE_COUNT=412\n"
                           "POWER_SUPPLY_POWER_NOW=10000000\n"
                           "POWER_SUPPLY_ENERGY_FULL_DESIGN=57000000\n"
                           "POWER_SUPPLY_ENERGY_FULL=51300000\n"
                           "POWER_SUPPLY_ENERGY_NOW=25000000\n"
                           "POWER_SUPPLY_CAPACITY=49\n");

TEST(LinuxBattery, DischargingLaptop) {
    EXPECT_TRUE(isSystemBattery(laptopBattery));
    const auto info = batteryInfoFromSupply(laptopBattery, false);
    EXPECT_DOUBLE_EQ(info.percent, 0.49);
    EXPECT_FALSE(info.charging);
    EXPECT_TRUE(info.onBattery);
    EXPECT_EQ(info.minutesLeft, 150); // 25 Wh at 10 W
    EXPECT_EQ(info.cycleCount, 412);
    EXPECT_DOUBLE_EQ(*info.health, 0.9);
}

TEST(LinuxBattery, ChargeFamilyZeroCyclesAndMains) {
    const auto battery = parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Battery\n"
                                                "POWER_SUPPLY_STATUS=Charging\n"
                                                "POWER_SUPPLY_CYCLE_COUNT=0\n"
                                                "POWER_SUPPLY_CHARGE_FULL=4000000\n"
                                                "POWER_SUPPLY_CHARGE_NOW=1000000\n");
    const auto info = batteryInfoFromSupply(battery, true);
    EXPECT_DOUBLE_EQ(info.percent, 0.25); // no capacity figure: charge now over full
    EXPECT_TRUE(info.charging);
    EXPECT_FALSE(info.onBattery);
    EXPECT_FALSE(info.minutesLeft);
    EXPECT_FALSE(info.cycleCount); // 0 means the battery does not count them
    EXPECT_FALSE(info.health);

    // Without a mains entry, the battery's own status says where power comes from.
    EXPECT_TRUE(batteryInfoFromSupply(laptopBattery, std::nullopt).onBattery);
    EXPECT_FALSE(batteryInfoFromSupply(battery, std::nullopt).onBattery);

    EXPECT_EQ(
        mainsOnline(parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=1\n")),
        true);
    EXPECT_EQ(
        mainsOnline(parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Mains\nPOWER_SUPPLY_ONLINE=0\n")),
        false);
    EXPECT_EQ(mainsOnline(laptopBattery), std::nullopt);
    // A wireless mouse's battery is not the computer's.
    EXPECT_FALSE(isSystemBattery(parsePowerSupplyUevent(
        "POWER_SUPPLY_TYPE=Battery\nPOWER_SUPPLY_SCOPE=Device\nPOWER_SUPPLY_CAPACITY=80\n")));
}

ThermalZone zone(double celsius) {
    return ThermalZone{.celsius = celsius,
                       .trips = {{"active", 50.0}, {"passive", 90.0}, {"critical", 105.0}}};
}

TEST(LinuxThermal, LevelFromTheNearestTrip) {
    EXPECT_EQ(thermalLevelFromZones({}, false), ThermalLevel::nominal);
    EXPECT_EQ(thermalLevelFromZones({zone(60.0)}, false), ThermalLevel::nominal); // fans only
    EXPECT_EQ(thermalLevelFromZones({zone(82.0)}, false), ThermalLevel::fair);
    EXPECT_EQ(thermalLevelFromZones({zone(91.0)}, false), ThermalLevel::serious);
    EXPECT_EQ(thermalLevelFromZones({zone(106.0)}, false), ThermalLevel::critical);
    // The hottest zone counts; throttling alone means the processor is slowed down.
    EXPECT_EQ(thermalLevelFromZones({zone(40.0), zone(95.0)}, false), ThermalLevel::serious);
    EXPECT_EQ(thermalLevelFromZones({zone(40.0)}, true), ThermalLevel::serious);
    // A zone with no trips tells nothing.
    EXPECT_EQ(thermalLevelFromZones({ThermalZone{.celsius = 120.0}}, false), ThermalLevel::nominal);

    EXPECT_EQ(parseMillidegrees("45500\n"), 45.5);
    EXPECT_FALSE(parseMillidegrees("hot"));
}

} // namespace
} // namespace loadwarden
