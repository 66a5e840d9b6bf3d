#include "core/measurement/linux/power_supply.h"
#include "core/measurement/linux/thermal_zones.h"

#include <gtest/gtest.h>
#include <ranges>
#include <string>

namespace loadwarden {
namespace {

// A power supply from its uevent's fields: "TYPE=Battery STATUS=Charging …".
PowerSupply supply(std::string_view fields) {
    std::string uevent;
    for (const auto field : std::views::split(fields, ' ')) {
        uevent += "POWER_SUPPLY_" + std::string(field.begin(), field.end()) + "\n";
    }
    return parsePowerSupplyUevent(uevent);
}

const PowerSupply laptopBattery =
    supply("NAME=BAT0 TYPE=Battery STATUS=Discharging CYCLE_COUNT=412 POWER_NOW=10000000 "
           "ENERGY_FULL_DESIGN=57000000 ENERGY_FULL=51300000 ENERGY_NOW=25000000 CAPACITY=49");

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
    const auto battery =
        supply("TYPE=Battery STATUS=Charging CYCLE_COUNT=0 CHARGE_FULL=4000000 CHARGE_NOW=1000000");
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
    const auto trickle = supply(
        "TYPE=Battery STATUS=Discharging ENERGY_NOW=50000000 POWER_NOW=3 CYCLE_COUNT=99999999999");
    EXPECT_FALSE(batteryInfoFromSupplies({trickle}, false)->minutesLeft);
    EXPECT_FALSE(batteryInfoFromSupplies({trickle}, false)->cycleCount);

    EXPECT_EQ(mainsOnline(supply("TYPE=Mains ONLINE=1")), true);
    EXPECT_EQ(mainsOnline(supply("TYPE=Mains ONLINE=0")), false);
    EXPECT_EQ(mainsOnline(laptopBattery), std::nullopt);
    // A wireless mouse's battery is not the computer's.
    EXPECT_FALSE(isSystemBattery(supply("TYPE=Battery SCOPE=Device CAPACITY=80")));
}

TEST(LinuxBattery, TwoBatteriesCountAsOne) {
    // A laptop with a small internal and a large swappable battery: the
    // internal one is drained first while the other waits.
    const auto internal =
        supply("TYPE=Battery STATUS=Discharging CYCLE_COUNT=300 POWER_NOW=12000000 "
               "ENERGY_FULL_DESIGN=24000000 ENERGY_FULL=20000000 ENERGY_NOW=4000000 CAPACITY=20");
    const auto swappable =
        supply("TYPE=Battery STATUS=Unknown CYCLE_COUNT=120 POWER_NOW=0 "
               "ENERGY_FULL_DESIGN=72000000 ENERGY_FULL=60000000 ENERGY_NOW=56000000 CAPACITY=93");
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
