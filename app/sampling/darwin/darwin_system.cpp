#include "app/sampling/darwin/darwin_system.h"

#include "app/foundation/clock.h"
#include "app/sampling/darwin/foundation_figures.h"
#include "app/sampling/darwin/kernel_settings.h"
#include "app/sampling/darwin/registry.h"
#include "core/foundation/checked_arithmetic.h"
#include "core/measurement/power_source.h"

#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>
#include <algorithm>
#include <array>
#include <cstring>
#include <mach/mach.h>
#include <net/if.h>
#include <net/route.h>
#include <sys/socket.h>
#include <sys/sysctl.h>
#include <vector>

namespace loadwarden {

namespace {

// The size of the buffer the virtual-memory statistics are asked for with,
// in 32-bit words; larger than the kernel's structure, which it fills.
constexpr std::size_t vmStatisticsWords = 104;

std::uint64_t physicalMemory() {
    std::uint64_t bytes = 0;
    std::size_t size = sizeof bytes;
    return sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0) == 0 ? bytes : 0;
}

xsw_usage swapUsage() {
    xsw_usage usage{};
    std::size_t size = sizeof usage;
    if (sysctlbyname("vm.swapusage", &usage, &size, nullptr, 0) != 0) {
        return xsw_usage{};
    }
    return usage;
}

std::optional<PowerSourceFigures> internalBattery() {
    const CFValues::Owned<> info(IOPSCopyPowerSourcesInfo());
    if (info.get() == nullptr) {
        return std::nullopt;
    }
    const CFValues::Owned<> sources(IOPSCopyPowerSourcesList(info.get()));
    if (sources.get() == nullptr) {
        return std::nullopt;
    }
    const auto list = static_cast<CFArrayRef>(sources.get());
    for (CFIndex i = 0; i < CFArrayGetCount(list); ++i) {
        const CFDictionaryRef source =
            IOPSGetPowerSourceDescription(info.get(), CFArrayGetValueAtIndex(list, i));
        if (CFValues::string(CFValues::value(source, CFSTR(kIOPSTypeKey))) !=
            kIOPSInternalBatteryType) {
            continue;
        }
        return PowerSourceFigures{
            .currentCapacity =
                CFValues::number(CFValues::value(source, CFSTR(kIOPSCurrentCapacityKey))),
            .maxCapacity = CFValues::number(CFValues::value(source, CFSTR(kIOPSMaxCapacityKey))),
            .minutesToEmpty = CFValues::number(CFValues::value(source, CFSTR(kIOPSTimeToEmptyKey))),
            .isCharging = CFValues::boolean(CFValues::value(source, CFSTR(kIOPSIsChargingKey)))
                              .value_or(false),
            .powerSourceState =
                CFValues::string(CFValues::value(source, CFSTR(kIOPSPowerSourceStateKey))),
        };
    }
    return std::nullopt;
}

void addSmartBatteryFigures(PowerSourceFigures& figures) {
    const io_service_t battery =
        IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSmartBattery"));
    if (battery == 0) {
        return;
    }
    if (const auto cycles =
            CFValues::integer(Registry::property(battery, CFSTR("CycleCount")).get())) {
        figures.cycleCount = static_cast<int>(*cycles);
    }
    figures.rawMaxCapacity =
        CFValues::number(Registry::property(battery, CFSTR("AppleRawMaxCapacity")).get());
    figures.designCapacity =
        CFValues::number(Registry::property(battery, CFSTR("DesignCapacity")).get());
    IOObjectRelease(battery);
}

} // namespace

DarwinSystem::DarwinSystem()
    : host_(mach_host_self()),
      performanceCores_(static_cast<int>(KernelSettings::integer("hw.perflevel0.logicalcpu"))),
      efficiencyCores_(static_cast<int>(KernelSettings::integer("hw.perflevel1.logicalcpu"))) {}

DarwinSystem::~DarwinSystem() {
    mach_port_deallocate(mach_task_self(), host_);
}

ProcessorReading DarwinSystem::processors() const {
    ProcessorReading reading;
    natural_t count = 0;
    processor_info_array_t info = nullptr;
    mach_msg_type_number_t infoCount = 0;
    if (host_processor_info(host_, PROCESSOR_CPU_LOAD_INFO, &count, &info, &infoCount) !=
        KERN_SUCCESS) {
        return reading;
    }
    const auto* loads = reinterpret_cast<const processor_cpu_load_info*>(info);
    for (natural_t cpu = 0; cpu < count; ++cpu) {
        reading.ticks.push_back(CPUTicks{.user = loads[cpu].cpu_ticks[CPU_STATE_USER],
                                         .system = loads[cpu].cpu_ticks[CPU_STATE_SYSTEM],
                                         .idle = loads[cpu].cpu_ticks[CPU_STATE_IDLE],
                                         .nice = loads[cpu].cpu_ticks[CPU_STATE_NICE]});
    }
    vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(info),
                  static_cast<vm_size_t>(infoCount) * sizeof(integer_t));
    reading.kinds = CPUMath::coreKinds(static_cast<int>(reading.ticks.size()), performanceCores_,
                                       efficiencyCores_);
    return reading;
}

MemoryStats DarwinSystem::memory() const {
    const std::uint64_t total = physicalMemory();
    std::array<integer_t, vmStatisticsWords> buffer{};
    auto count = static_cast<mach_msg_type_number_t>(vmStatisticsWords);
    if (host_statistics64(host_, HOST_VM_INFO64, buffer.data(), &count) != KERN_SUCCESS) {
        return MemoryStats{.total = total};
    }
    vm_statistics64_data_t statistics{};
    static_assert(sizeof statistics <= sizeof buffer);
    std::memcpy(&statistics, buffer.data(), sizeof statistics);
    const xsw_usage swap = swapUsage();
    return MemoryStats::fromPageCounts({
        .pageSize = vm_kernel_page_size,
        .totalBytes = total,
        .internal = statistics.internal_page_count,
        .purgeable = statistics.purgeable_count,
        .wired = statistics.wire_count,
        .compressor = statistics.compressor_page_count,
        .external = statistics.external_page_count,
        .swapUsedBytes = swap.xsu_used,
        .swapTotalBytes = swap.xsu_total,
        .pressureLevel =
            static_cast<int>(KernelSettings::integer("kern.memorystatus_vm_pressure_level")),
    });
}

std::optional<ByteCounters> DarwinSystem::diskCounters() const {
    ByteCounters total;
    const bool read =
        Registry::forEachService("IOBlockStorageDriver", [&total](io_object_t driver) {
            const auto statistics = Registry::property(driver, CFSTR("Statistics"));
            const auto bytesRead =
                CFValues::integer(CFValues::value(statistics.get(), CFSTR("Bytes (Read)")));
            const auto bytesWritten =
                CFValues::integer(CFValues::value(statistics.get(), CFSTR("Bytes (Write)")));
            total.in = checkedAdd(total.in, static_cast<std::uint64_t>(
                                                std::max<std::int64_t>(bytesRead.value_or(0), 0)));
            total.out = checkedAdd(total.out, static_cast<std::uint64_t>(std::max<std::int64_t>(
                                                  bytesWritten.value_or(0), 0)));
        });
    if (!read) {
        return std::nullopt;
    }
    return total;
}

std::optional<ByteCounters> DarwinSystem::interfaceCounters() const {
    int name[] = {CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0};
    std::size_t size = 0;
    if (sysctl(name, 6, nullptr, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    std::vector<char> messages(size);
    if (sysctl(name, 6, messages.data(), &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    ByteCounters total;
    for (std::size_t offset = 0; offset + sizeof(if_msghdr) <= size;) {
        const auto* header = reinterpret_cast<const if_msghdr*>(messages.data() + offset);
        if (header->ifm_msglen == 0) {
            break;
        }
        if (header->ifm_type == RTM_IFINFO2 && offset + sizeof(if_msghdr2) <= size) {
            const auto* info = reinterpret_cast<const if_msghdr2*>(header);
            if ((info->ifm_flags & IFF_LOOPBACK) == 0) {
                total.in = checkedAdd(total.in, info->ifm_data.ifi_ibytes);
                total.out = checkedAdd(total.out, info->ifm_data.ifi_obytes);
            }
        }
        offset += header->ifm_msglen;
    }
    return total;
}

std::optional<BatteryInfo> DarwinSystem::battery() const {
    auto figures = internalBattery();
    if (!figures) {
        return std::nullopt;
    }
    addSmartBatteryFigures(*figures);
    return batteryInfoFromPowerSource(*figures);
}

ThermalLevel DarwinSystem::thermal() const {
    return FoundationFigures::thermalLevel();
}

bool DarwinSystem::lowPowerMode() const {
    return FoundationFigures::lowPowerMode();
}

std::optional<DiskSpace> DarwinSystem::diskSpace() const {
    const auto root = CFValues::fileURL("/", true);
    const CFStringRef availableKey = kCFURLVolumeAvailableCapacityForImportantUsageKey;
    const CFStringRef totalKey = kCFURLVolumeTotalCapacityKey;
    const void* keys[] = {availableKey, totalKey};
    const CFValues::Owned<CFArrayRef> wanted(
        CFArrayCreate(kCFAllocatorDefault, keys, 2, &kCFTypeArrayCallBacks));
    const CFValues::Owned<CFDictionaryRef> values(
        CFURLCopyResourcePropertiesForKeys(root.get(), wanted.get(), nullptr));
    const auto available = CFValues::integer(CFValues::value(values.get(), availableKey));
    const auto total = CFValues::integer(CFValues::value(values.get(), totalKey));
    if (!available || !total || *available < 0 || *total < 0) {
        return std::nullopt;
    }
    return DiskSpace{static_cast<std::uint64_t>(*available), static_cast<std::uint64_t>(*total)};
}

Seconds DarwinSystem::uptime() const {
    timeval booted{};
    std::size_t size = sizeof booted;
    if (sysctlbyname("kern.boottime", &booted, &size, nullptr, 0) != 0) {
        return 0.0;
    }
    return currentDate() -
           (static_cast<double>(booted.tv_sec) + static_cast<double>(booted.tv_usec) / 1'000'000.0);
}

} // namespace loadwarden
