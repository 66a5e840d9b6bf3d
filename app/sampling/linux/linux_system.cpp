#include "app/sampling/linux/linux_system.h"

#include "app/sampling/linux/kernel_files.h"
#include "core/foundation/checked_arithmetic.h"
#include "core/measurement/linux/power_supply.h"
#include "core/measurement/linux/system_files.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <sys/statvfs.h>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::uint64_t sectorBytes = 512;

std::optional<std::vector<int>> cpuList(const std::string& path) {
    const auto text = KernelFiles::text(path);
    return text ? parseCPUList(*text) : std::nullopt;
}

// Intel's hybrid processors list their two kinds of core; ARM's give each
// core a relative capacity.
CoreTopology readTopology() {
    const auto performance = cpuList("/sys/devices/cpu_core/cpus");
    const auto efficiency = cpuList("/sys/devices/cpu_atom/cpus");
    if (performance && efficiency) {
        return CoreTopology{.performance = *performance, .efficiency = *efficiency};
    }
    std::map<int, int> capacities;
    for (const auto& cpu : KernelFiles::entries("/sys/devices/system/cpu")) {
        const auto number =
            cpu.starts_with("cpu") ? parseInteger<int>(cpu.substr(3)) : std::nullopt;
        const auto capacity =
            number ? KernelFiles::text("/sys/devices/system/cpu/" + cpu + "/cpu_capacity")
                   : std::nullopt;
        if (const auto value =
                capacity ? parseInteger<int>(trimWhitespace(*capacity)) : std::nullopt) {
            capacities.emplace(*number, *value);
        }
    }
    return CoreTopology::fromCapacities(capacities);
}

std::optional<std::string> trimmedText(const std::string& path) {
    auto text = KernelFiles::text(path);
    if (text) {
        *text = std::string(trimWhitespace(*text));
    }
    return text;
}

// The size of memory the kernel manages, as sysconf knows it without /proc.
std::uint64_t physicalMemorySize() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? checkedMultiply(static_cast<std::uint64_t>(pages),
                                                       static_cast<std::uint64_t>(pageSize))
                                     : 0;
}

} // namespace

LinuxSystem::LinuxSystem() : topology_(readTopology()), physicalMemory_(physicalMemorySize()) {
    for (const auto& zone :
         KernelFiles::entriesStartingWith("/sys/class/thermal", "thermal_zone")) {
        Zone read{.temperaturePath = zone + "/temp"};
        for (int trip = 0;; ++trip) {
            const auto prefix = zone + "/trip_point_" + std::to_string(trip);
            const auto type = trimmedText(prefix + "_type");
            const auto celsius =
                parseMillidegrees(KernelFiles::text(prefix + "_temp").value_or(""));
            if (!type || !celsius) {
                break;
            }
            read.trips.push_back(ThermalZone::Trip{.type = *type, .celsius = *celsius});
        }
        zones_.push_back(std::move(read));
    }
    for (const auto& cpu : KernelFiles::entriesStartingWith("/sys/devices/system/cpu", "cpu")) {
        for (const char* counter : {"/thermal_throttle/core_throttle_count",
                                    "/thermal_throttle/package_throttle_count"}) {
            if (KernelFiles::text(cpu + counter)) {
                throttleCounters_.push_back(cpu + counter);
            }
        }
    }
    for (const auto& zram : KernelFiles::entriesStartingWith("/sys/block", "zram")) {
        zramStats_.push_back(zram + "/mm_stat");
    }
}

ProcessorReading LinuxSystem::processors() {
    ProcessorReading reading;
    if (!KernelFiles::read("/proc/stat", buffer_)) {
        return reading;
    }
    std::vector<int> cpus;
    for (const auto& core : parseCoreTicks(buffer_)) {
        cpus.push_back(core.cpu);
        reading.ticks.push_back(core.ticks);
    }
    reading.kinds = topology_.kinds(cpus);
    return reading;
}

MemoryStats LinuxSystem::memory() {
    if (const auto stall =
            parseMemoryStall(KernelFiles::text("/proc/pressure/memory").value_or(""))) {
        pressure_ = memoryPressureFromStall(*stall, pressure_);
    }
    std::uint64_t zram = 0;
    for (const auto& stats : zramStats_) {
        const auto compressed = zramCompressedBytes(KernelFiles::text(stats).value_or(""));
        zram = saturatingAdd(zram, compressed.value_or(0));
    }
    const auto stats = KernelFiles::read("/proc/meminfo", buffer_)
                           ? memoryStatsFromMeminfo(parseMeminfo(buffer_), zram, pressure_)
                           : std::nullopt;
    // Whatever the reading, the machine still has its memory.
    return stats.value_or(MemoryStats{.total = physicalMemory_, .pressure = pressure_});
}

bool LinuxSystem::isPhysicalDisk(const std::string& name) {
    auto known = physicalDisks_.find(name);
    if (known == physicalDisks_.end()) {
        // Whole disks are listed in /sys/block (partitions are not); loop,
        // zram, device-mapper and md devices resolve under /sys/devices/virtual.
        const auto target = KernelFiles::linkTarget("/sys/block/" + name);
        const bool physical = target && target->find("/devices/virtual/") == std::string::npos;
        known = physicalDisks_.emplace(name, physical).first;
    }
    return known->second;
}

std::optional<ByteCounters> LinuxSystem::diskCounters() {
    if (!KernelFiles::read("/proc/diskstats", buffer_)) {
        return std::nullopt;
    }
    ByteCounters total;
    for (const auto& disk : parseDiskstats(buffer_)) {
        if (isPhysicalDisk(disk.name)) {
            total.in = saturatingAdd(total.in, saturatingMultiply(disk.sectorsRead, sectorBytes));
            total.out =
                saturatingAdd(total.out, saturatingMultiply(disk.sectorsWritten, sectorBytes));
        }
    }
    return total;
}

bool LinuxSystem::hasDevice(const std::string& interface) {
    auto known = interfacesWithDevice_.find(interface);
    if (known == interfacesWithDevice_.end()) {
        const bool device = access(("/sys/class/net/" + interface + "/device").c_str(), F_OK) == 0;
        known = interfacesWithDevice_.emplace(interface, device).first;
    }
    return known->second;
}

std::optional<ByteCounters> LinuxSystem::interfaceCounters() {
    if (!KernelFiles::read("/proc/net/dev", buffer_)) {
        return std::nullopt;
    }
    auto interfaces = parseNetDev(buffer_);
    for (auto& interface : interfaces) {
        interface.hasDevice = hasDevice(interface.name);
    }
    const auto traffic = countedTraffic(interfaces);
    return ByteCounters{.in = traffic.received, .out = traffic.sent};
}

std::optional<BatteryInfo> LinuxSystem::battery() const {
    std::vector<PowerSupply> batteries;
    std::optional<bool> mainsOnline;
    for (const auto& entry : KernelFiles::entriesStartingWith("/sys/class/power_supply", "")) {
        const auto supply =
            parsePowerSupplyUevent(KernelFiles::text(entry + "/uevent").value_or(""));
        if (isSystemBattery(supply)) {
            batteries.push_back(supply);
        } else if (const auto online = loadwarden::mainsOnline(supply)) {
            mainsOnline = mainsOnline.value_or(false) || *online;
        }
    }
    return batteryInfoFromSupplies(batteries, mainsOnline);
}

std::uint64_t LinuxSystem::throttleCount() const {
    std::uint64_t count = 0;
    for (const auto& counter : throttleCounters_) {
        const auto value = parseInteger<std::uint64_t>(trimmedText(counter).value_or(""));
        count = saturatingAdd(count, value.value_or(0));
    }
    return count;
}

ThermalLevel LinuxSystem::thermal() {
    std::vector<ThermalZone> zones;
    for (const auto& zone : zones_) {
        if (const auto celsius =
                parseMillidegrees(KernelFiles::text(zone.temperaturePath).value_or(""))) {
            zones.push_back(ThermalZone{.celsius = *celsius, .trips = zone.trips});
        }
    }
    const std::uint64_t throttles = throttleCount();
    const bool throttled = lastThrottleCount_ && throttles > *lastThrottleCount_;
    lastThrottleCount_ = throttles;
    return thermalLevelFromZones(zones, throttled);
}

bool LinuxSystem::lowPowerMode() const {
    // The firmware's platform profile, as power-profiles-daemon sets it.
    const auto profile = trimmedText("/sys/firmware/acpi/platform_profile");
    return profile && (*profile == "low-power" || *profile == "quiet" || *profile == "cool");
}

Seconds LinuxSystem::uptime() const {
    return parseUptime(KernelFiles::text("/proc/uptime").value_or("")).value_or(0.0);
}

std::optional<DiskSpace> LinuxSystem::diskSpace() const {
    struct statvfs volume {};
    if (statvfs("/", &volume) != 0) {
        return std::nullopt;
    }
    return DiskSpace{
        .free = checkedMultiply(volume.f_bavail, volume.f_frsize),
        .total = checkedMultiply(volume.f_blocks, volume.f_frsize),
    };
}

} // namespace loadwarden
