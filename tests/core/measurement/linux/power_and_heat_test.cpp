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
    const auto info = *batteryInfoFromSupplies({laptopBattery}, false);
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
    const auto info = *batteryInfoFromSupplies({battery}, true);
    EXPECT_DOUBLE_EQ(info.percent, 0.25); // no capacity figure: charge now over full
    EXPECT_TRUE(info.charging);
    EXPECT_FALSE(info.onBattery);
    EXPECT_FALSE(info.minutesLeft);
    EXPECT_FALSE(info.cycleCount); // 0 means the battery does not count them
    EXPECT_FALSE(info.health);

    // Without a mains entry, the battery's own status says where power comes from.
    EXPECT_TRUE(batteryInfoFromSupplies({laptopBattery}, std::nullopt)->onBattery);
    EXPECT_FALSE(batteryInfoFromSupplies({battery}, std::nullopt)->onBattery);
    EXPECT_FALSE(batteryInfoFromSupplies({}, true)); // a desktop
    // A drain the sensor barely registers promises no time at all.
    const auto trickle = parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Battery\n"
                                                "POWER_SUPPLY_STATUS=Discharging\n"
                                                "POWER_SUPPLY_ENERGY_NOW=50000000\n"
                                                "POWER_SUPPLY_POWER_NOW=3\n"
                                                "POWER_SUPPLY_CYCLE_COUNT=99999999999\n");
    EXPECT_FALSE(batteryInfoFromSupplies({trickle}, false)->minutesLeft);
    EXPECT_FALSE(batteryInfoFromSupplies({trickle}, false)->cycleCount);

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

TEST(LinuxBattery, TwoBatteriesCountAsOne) {
    // A laptop with a small internal and a large swappable battery: the
    // internal one is drained first while the other waits.
    const auto internal = parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Battery\n"
                                                 "POWER_SUPPLY_STATUS=Discharging\n"
                                                 "POWER_SUPPLY_CYCLE_COUNT=300\n"
                                                 "POWER_SUPPLY_POWER_NOW=12000000\n"
                                                 "POWER_SUPPLY_ENERGY_FULL_DESIGN=24000000\n"
                                                 "POWER_SUPPLY_ENERGY_FULL=20000000\n"
                                                 "POWER_SUPPLY_ENERGY_NOW=4000000\n"
                                                 "POWER_SUPPLY_CAPACITY=20\n");
    const auto swappable = parsePowerSupplyUevent("POWER_SUPPLY_TYPE=Battery\n"
                                                  "POWER_SUPPLY_STATUS=Unknown\n"
                                                  "POWER_SUPPLY_CYCLE_COUNT=120\n"
                                                  "POWER_SUPPLY_POWER_NOW=0\n"
                                                  "POWER_SUPPLY_ENERGY_FULL_DESIGN=72000000\n"
                                                  "POWER_SUPPLY_ENERGY_FULL=60000000\n"
                                                  "POWER_SUPPLY_ENERGY_NOW=56000000\n"
                                                  "POWER_SUPPLY_CAPACITY=93\n");
    const auto info = *batteryInfoFromSupplies({internal, swappable}, false);
    EXPECT_DOUBLE_EQ(info.percent, 0.75); // 60 of 80 Wh, not the mean of 20 % and 93 %
    EXPECT_TRUE(info.onBattery);
    EXPECT_EQ(info.minutesLeft, 300); // 60 Wh at 12 W
    EXPECT_EQ(info.cycleCount, 300);  // the more worn one
    EXPECT_DOUBLE_EQ(*info.health, 80.0 / 96.0);
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
}

TEST(LinuxThermal, TripsTheFirmwareNeverSetAreNoMarks) {
    // An ordinary laptop at rest without thermald: the passive trip reads
    // 0 °C on older kernels and -273.2 °C on newer ones.
    const ThermalZone olderKernel{.celsius = 45.0,
                                  .trips = {{"passive", 0.0}, {"critical", 103.0}}};
    const ThermalZone newerKernel{.celsius = 45.0, .trips = {{"passive", -273.2}, {"hot", -273.2}}};
    EXPECT_EQ(thermalLevelFromZones({olderKernel, newerKernel}, false), ThermalLevel::nominal);
    // A sensor that cannot be read reports the same sentinel; it is no heat either.
    EXPECT_EQ(thermalLevelFromZones({zone(-273.2)}, false), ThermalLevel::nominal);
    EXPECT_EQ(thermalLevelFromZones({ThermalZone{.celsius = 60.0, .trips = {{"critical", 1000.0}}}},
                                    false),
              ThermalLevel::nominal);
    // The real marks of the same zone still count.
    EXPECT_EQ(
        thermalLevelFromZones({ThermalZone{.celsius = 104.0, .trips = olderKernel.trips}}, false),
        ThermalLevel::critical);
    EXPECT_FALSE(parseMillidegrees("hot"));
}

} // namespace
} // namespace loadwarden
