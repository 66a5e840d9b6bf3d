#pragma once

// Parsers for the system-wide files under /proc and /sys. Pure: the backend
// reads the files, these turn their text into numbers.

#include "core/measurement/cpu.h"
#include "core/measurement/memory.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loadwarden {

// One "cpuN" line of /proc/stat in the kernel's four counters.
struct CoreTicks {
    int cpu = 0;
    CPUTicks ticks;
};
// Offline cores have no line, so the numbers may have gaps.
std::vector<CoreTicks> parseCoreTicks(std::string_view procStat);

// /proc/meminfo figures in bytes by name ("MemTotal", "Cached", …).
using Meminfo = std::map<std::string, std::uint64_t, std::less<>>;
Meminfo parseMeminfo(std::string_view text);

// Compressed bytes held by a zram device, from its mm_stat.
std::optional<std::uint64_t> zramCompressedBytes(std::string_view mmStat);

// Memory figures in the shape of the data model. `used` comes out as
// MemTotal - MemAvailable, what people know as used memory on Linux, and
// `cached` is the page cache that could be dropped, never overlapping it.
// Absent when the text has no MemTotal.
std::optional<MemoryStats> memoryStatsFromMeminfo(const Meminfo& meminfo,
                                                  std::uint64_t zramCompressed,
                                                  MemoryPressure pressure);

// Share of the last 10 seconds in which some or all tasks stalled on memory,
// in percent, from /proc/pressure/memory.
struct MemoryStall {
    double some = 0.0;
    double full = 0.0;
};
std::optional<MemoryStall> parseMemoryStall(std::string_view text);

// The pressure level of a stall reading. A level is left only once the stall
// has fallen well below the mark that raised it, so it does not flicker.
MemoryPressure memoryPressureFromStall(const MemoryStall& stall, MemoryPressure previous);

// Cumulative sectors of each block device in /proc/diskstats (always
// 512-byte sectors, whatever the device's own sector size).
struct DiskCounters {
    std::string name;
    std::uint64_t sectorsRead = 0;
    std::uint64_t sectorsWritten = 0;
};
std::vector<DiskCounters> parseDiskstats(std::string_view text);

// Cumulative bytes of each interface in /proc/net/dev.
struct InterfaceCounters {
    std::string name;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    bool hasDevice = false; // backed by hardware: /sys/class/net/NAME/device exists
};
std::vector<InterfaceCounters> parseNetDev(std::string_view text);

struct Traffic {
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
};
// What crossed the machine's edge, counted once: every interface but the
// loopback, and only those backed by hardware when there are any, so that
// bridges, tunnels and veth pairs stacked on them do not count twice.
Traffic countedTraffic(const std::vector<InterfaceCounters>& interfaces);

// A kernel CPU list such as "0-3,8,10-11".
std::optional<std::vector<int>> parseCPUList(std::string_view text);

// Seconds since boot, the first field of /proc/uptime.
std::optional<double> parseUptime(std::string_view text);

} // namespace loadwarden
