// Power supplies and thermal zones under /sys/class: parsePowerSupplyUevent,
// isSystemBattery, mainsOnline and batteryInfoFromSupplies; parseMillidegrees
// and thermalLevelFromZones.
#include "core/measurement/linux/power_supply.h"
#include "core/measurement/linux/thermal_zones.h"
#include "tests/fuzz/fuzz_support.h"

#include <algorithm>

namespace loadwarden {
namespace {

using fuzz::check;

bool isFraction(double value) {
    return fuzz::isWithin(value, 0.0, 1.0);
}

void checkBattery(const std::vector<PowerSupply>& batteries, std::optional<bool> online) {
    const auto info = batteryInfoFromSupplies(batteries, online);
    check(info.has_value() == !batteries.empty(), "a battery reading needs a battery");
    if (!info) {
        return;
    }
    check(isFraction(info->percent), "the charge is a fraction");
    check(!info->health || isFraction(*info->health), "the health is a fraction");
    check(!info->cycleCount || *info->cycleCount > 0, "a cycle count counts");
    check(!info->minutesLeft || (*info->minutesLeft >= 1 && info->onBattery),
          "time is left only on battery");
    check(!online || info->onBattery == !*online, "the mains decide the power source");
}

// A uevent file, as two supplies when the text holds two.
void checkPowerSupplies(std::string_view text) {
    const auto [first, second] = fuzz::halves(text);
    std::vector<PowerSupply> supplies{parsePowerSupplyUevent(text), parsePowerSupplyUevent(first),
                                      parsePowerSupplyUevent(second)};
    for (const PowerSupply& supply : supplies) {
        for (const auto& [key, value] : supply) {
            check(fuzz::isTrimmedLine(value), "values are trimmed lines");
        }
        isSystemBattery(supply);
        const auto online = mainsOnline(supply);
        check(!online || supply.at("TYPE") == "Mains", "only the mains are online");
    }
    for (const std::optional<bool> online :
         {std::optional<bool>{}, std::optional{true}, std::optional{false}}) {
        checkBattery({}, online);
        checkBattery({supplies[0]}, online);
        checkBattery({supplies[1], supplies[2]}, online);
    }
}

// A zone's temp, then the type and temp of each trip point, a line each.
void checkThermalZone(std::string_view text) {
    const auto lines = fuzz::leadingLines(text, 17);
    const auto celsius = lines.empty() ? std::nullopt : parseMillidegrees(lines[0]);
    if (!celsius) {
        return;
    }
    ThermalZone zone{.celsius = *celsius};
    for (std::size_t i = 1; i + 1 < lines.size(); i += 2) {
        if (const auto trip = parseMillidegrees(lines[i + 1])) {
            zone.trips.push_back({std::string(trimWhitespace(lines[i])), *trip});
        }
    }
    const ThermalLevel level = thermalLevelFromZones({zone}, false);
    check(thermalLevelFromZones({zone, zone}, false) == level, "a zone counts once");
    check(thermalLevelFromZones({zone, ThermalZone{.celsius = 40.0}}, false) == level,
          "a cool zone changes nothing");
    check(thermalLevelFromZones({zone}, true) == std::max(level, ThermalLevel::serious),
          "throttling means the processor is slowed down");
}

} // namespace

void fuzz::run(std::string_view text) {
    checkPowerSupplies(text);
    checkThermalZone(text);
}

} // namespace loadwarden
