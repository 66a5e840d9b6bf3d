// The system-wide files under /proc and /sys: parseCoreTicks (stat),
// parseMeminfo, zramCompressedBytes and memoryStatsFromMeminfo, parseMemoryStall
// and memoryPressureFromStall (pressure/memory), parseDiskstats, parseNetDev and
// countedTraffic, parseCPUList and parseUptime. Every parser reads the same
// bytes, so each file's samples seed all of them.
#include "core/measurement/linux/system_files.h"
#include "core/text/text_parsing.h"
#include "tests/fuzz/fuzz_support.h"

#include <algorithm>
#include <cmath>

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

bool isShare(double value) {
    return std::isfinite(value) && value >= 0.0 && value <= 100.0;
}

void checkPressure(std::string_view text) {
    const auto stall = parseMemoryStall(text);
    if (!stall) {
        return;
    }
    check(isShare(stall->some) && isShare(stall->full), "stalls are shares of time");
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
        check(interface.name == trimWhitespace(interface.name), "interface names are trimmed");
        if (interface.name != "lo") {
            received += interface.received;
            sent += interface.sent;
        }
    }
    const Traffic everything = countedTraffic(interfaces);
    check(everything.received == received && everything.sent == sent,
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
} // namespace loadwarden

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace loadwarden;
    const std::string_view text = fuzz::text(data, size);
    checkMemory(text);
    checkCounters(text);
    checkPressure(text);
    checkCPUList(text);
    if (const auto uptime = parseUptime(text)) {
        fuzz::check(std::isfinite(*uptime) && *uptime >= 0.0, "uptime is a time");
    }
    return 0;
}
