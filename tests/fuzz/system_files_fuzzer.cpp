// The system-wide files under /proc and /sys: parseCoreTicks (stat),
// parseMeminfo, zramCompressedBytes and memoryStatsFromMeminfo, parseMemoryStall
// and memoryPressureFromStall (pressure/memory), parseDiskstats, parseNetDev and
// countedTraffic, parseCPUList and parseUptime. Every parser reads the same
// bytes, so each file's samples seed all of them.
#include "core/measurement/linux/system_files.h"
#include "tests/fuzz/fuzz_support.h"

#include <algorithm>
#include <limits>

namespace loadwarden {
namespace {

using fuzz::check;

void checkMemory(std::string_view text) {
    const Meminfo meminfo = parseMeminfo(text);
    for (const auto& [name, bytes] : meminfo) {
        check(bytes % 1024 == 0, "meminfo figures are whole kibibytes");
    }
    const auto stats = memoryStatsFromMeminfo(meminfo, zramCompressedBytes(text).value_or(0),
                                              MemoryPressure::warning);
    if (!stats) {
        return;
    }
    const std::uint64_t used = stats->app + stats->wired + stats->compressed;
    check(stats->app <= stats->total && stats->wired <= stats->total &&
              stats->compressed <= stats->total && used <= stats->total,
          "the parts of used memory fit in the total");
    check(stats->cached <= stats->total - used, "cached memory is what is not used");
    check(stats->swapUsed <= stats->swapTotal, "used swap fits in the swap");
    check(stats->pressure == MemoryPressure::warning, "the pressure passes through");
}

void checkPressure(std::string_view text) {
    const auto stall = parseMemoryStall(text);
    if (!stall) {
        return;
    }
    check(fuzz::isWithin(stall->some, 0.0, 100.0) && fuzz::isWithin(stall->full, 0.0, 100.0),
          "stalls are shares of time");
    const auto level = [&stall](MemoryPressure previous) {
        return static_cast<int>(memoryPressureFromStall(*stall, previous));
    };
    check(level(MemoryPressure::normal) <= level(MemoryPressure::warning) &&
              level(MemoryPressure::warning) <= level(MemoryPressure::critical),
          "a level held before is left no sooner than one not held");
}

void checkCounters(std::string_view text) {
    for (const CoreTicks& core : parseCoreTicks(text)) {
        check(core.cpu >= 0, "cores are numbered from 0");
    }
    for (const DiskCounters& disk : parseDiskstats(text)) {
        check(!disk.name.empty(), "a disk has a name");
    }
    std::vector<InterfaceCounters> interfaces = parseNetDev(text);
    unsigned __int128 received = 0;
    unsigned __int128 sent = 0;
    for (const InterfaceCounters& interface : interfaces) {
        check(fuzz::isTrimmedLine(interface.name), "interface names are trimmed");
        if (interface.name != "lo") {
            received += interface.received;
            sent += interface.sent;
        }
    }
    // Sums past 64 bits come only from a garbled file; they stop at the largest value.
    const auto saturated = [](unsigned __int128 sum) {
        return static_cast<std::uint64_t>(
            std::min<unsigned __int128>(sum, std::numeric_limits<std::uint64_t>::max()));
    };
    const Traffic everything = countedTraffic(interfaces);
    check(everything.received == saturated(received) && everything.sent == saturated(sent),
          "without hardware, every interface but the loopback counts");
    for (std::size_t i = 0; i < interfaces.size(); i += 2) {
        interfaces[i].hasDevice = true;
    }
    const Traffic hardware = countedTraffic(interfaces);
    check(hardware.received <= everything.received && hardware.sent <= everything.sent,
          "hardware alone counts no more than everything");
}

void checkCPUList(std::string_view text) {
    const auto cpus = parseCPUList(text);
    if (!cpus) {
        return;
    }
    std::string printed;
    for (const int cpu : *cpus) {
        check(cpu >= 0, "cores are numbered from 0");
        printed += (printed.empty() ? "" : ",") + std::to_string(cpu);
    }
    check(parseCPUList(printed) == cpus, "a list, printed again, reads the same");
}

} // namespace

void fuzz::run(std::string_view text) {
    checkMemory(text);
    checkCounters(text);
    checkPressure(text);
    checkCPUList(text);
    if (const auto uptime = parseUptime(text)) {
        check(isWithin(*uptime, 0.0, HUGE_VAL), "uptime is a time");
    }
}

} // namespace loadwarden
