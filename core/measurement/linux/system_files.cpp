#include "core/measurement/linux/system_files.h"

#include "core/foundation/checked_arithmetic.h"
#include "core/measurement/linux/fields.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <array>

namespace loadwarden {

namespace {

std::uint64_t figure(const Meminfo& meminfo, std::string_view name) {
    const auto found = meminfo.find(name);
    return found == meminfo.end() ? 0 : found->second;
}

// "avg10=1.23" from a "some …" or "full …" line of a pressure file.
std::optional<double> averageOverTenSeconds(std::string_view line) {
    for (const auto field : splitFields(line)) {
        if (startsWith(field, "avg10=")) {
            const auto percent = parseDecimal(field.substr(6));
            return percent && *percent <= 100.0 ? percent : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<CoreTicks> parseCoreTicks(std::string_view procStat) {
    std::vector<CoreTicks> cores;
    forEachLine(procStat, [&cores](std::string_view line) {
        // "cpu" alone is the total of every core.
        if (!startsWith(line, "cpu") || line.size() < 4 || line[3] < '0' || line[3] > '9') {
            return;
        }
        const auto fields = splitFields(line);
        if (fields.size() < 9) {
            return;
        }
        std::array<std::uint64_t, 8> counters{}; // user nice system idle iowait irq softirq steal
        for (std::size_t i = 0; i < counters.size(); ++i) {
            const auto value = parseInteger<std::uint64_t>(fields[i + 1]);
            if (!value) {
                return;
            }
            counters[i] = *value;
        }
        const auto cpu = parseInteger<int>(fields[0].substr(3));
        if (!cpu) {
            return;
        }
        // Guest time is already inside user and nice; iowait is idle time.
        cores.push_back(CoreTicks{
            .cpu = *cpu,
            .ticks = CPUTicks{.user = counters[0],
                              .system = saturatingAdd(saturatingAdd(counters[2], counters[5]),
                                                      saturatingAdd(counters[6], counters[7])),
                              .idle = saturatingAdd(counters[3], counters[4]),
                              .nice = counters[1]},
        });
    });
    return cores;
}

Meminfo parseMeminfo(std::string_view text) {
    Meminfo meminfo;
    forEachLine(text, [&meminfo](std::string_view line) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            return;
        }
        const auto fields = splitFields(line.substr(colon + 1));
        if (fields.size() != 2 || fields[1] != "kB") {
            return; // page counts such as HugePages_Total carry no unit
        }
        const auto kibibytes = parseInteger<std::uint64_t>(fields[0]);
        std::uint64_t bytes = 0;
        // A figure past 64 bits of bytes is a garbled line, left out.
        if (kibibytes && !__builtin_mul_overflow(*kibibytes, 1024, &bytes)) {
            meminfo.emplace(std::string(line.substr(0, colon)), bytes);
        }
    });
    return meminfo;
}

std::optional<std::uint64_t> zramCompressedBytes(std::string_view mmStat) {
    // orig_data_size compr_data_size mem_used_total …
    const auto fields = splitFields(trimWhitespace(mmStat));
    if (fields.size() < 2) {
        return std::nullopt;
    }
    return parseInteger<std::uint64_t>(fields[1]);
}

std::optional<MemoryStats> memoryStatsFromMeminfo(const Meminfo& meminfo,
                                                  std::uint64_t zramCompressed,
                                                  MemoryPressure pressure) {
    if (!meminfo.contains("MemTotal")) {
        return std::nullopt;
    }
    const std::uint64_t total = figure(meminfo, "MemTotal");
    const std::uint64_t used = counterDelta(figure(meminfo, "MemAvailable"), total);
    const std::uint64_t wired =
        saturatingAdd(saturatingAdd(figure(meminfo, "Unevictable"), figure(meminfo, "SUnreclaim")),
                      saturatingAdd(figure(meminfo, "KernelStack"), figure(meminfo, "PageTables")));
    const std::uint64_t compressed = saturatingAdd(figure(meminfo, "Zswap"), zramCompressed);
    // Wired and compressed memory lie inside MemTotal - MemAvailable already;
    // apps get the rest, so that the parts add up to what is used.
    const std::uint64_t wiredPart = std::min(wired, used);
    const std::uint64_t compressedPart = std::min(compressed, used - wiredPart);
    // Shared memory and tmpfs sit in Cached but cannot be dropped, so the
    // kernel counts them as used already; what is left of the page cache is
    // the reclaimable part, and it can never be more than what is not used.
    const std::uint64_t pageCache =
        counterDelta(figure(meminfo, "Shmem"),
                     saturatingAdd(figure(meminfo, "Buffers"), figure(meminfo, "Cached")));
    const std::uint64_t cached =
        std::min(saturatingAdd(pageCache, figure(meminfo, "SReclaimable")), total - used);
    const std::uint64_t swapTotal = figure(meminfo, "SwapTotal");
    return MemoryStats{
        .total = total,
        .app = used - wiredPart - compressedPart,
        .wired = wiredPart,
        .compressed = compressedPart,
        .cached = cached,
        .swapUsed = counterDelta(figure(meminfo, "SwapFree"), swapTotal),
        .swapTotal = swapTotal,
        .pressure = pressure,
    };
}

std::optional<MemoryStall> parseMemoryStall(std::string_view text) {
    std::optional<double> some;
    std::optional<double> full;
    forEachLine(text, [&](std::string_view line) {
        if (startsWith(line, "some ")) {
            some = averageOverTenSeconds(line);
        } else if (startsWith(line, "full ")) {
            full = averageOverTenSeconds(line);
        }
    });
    if (!some) {
        return std::nullopt;
    }
    return MemoryStall{.some = *some, .full = full.value_or(0.0)};
}

MemoryPressure memoryPressureFromStall(const MemoryStall& stall, MemoryPressure previous) {
    // Marks on the 10-second averages, in percent of the time stalled. Held
    // levels step down only below half their marks.
    const bool critical = stall.full >= 10.0;
    const bool holdCritical = previous == MemoryPressure::critical && stall.full >= 5.0;
    if (critical || holdCritical) {
        return MemoryPressure::critical;
    }
    const bool warning = stall.some >= 10.0 || stall.full >= 2.0;
    const bool holdWarning =
        previous != MemoryPressure::normal && (stall.some >= 5.0 || stall.full >= 1.0);
    if (warning || holdWarning) {
        return MemoryPressure::warning;
    }
    return MemoryPressure::normal;
}

std::vector<DiskCounters> parseDiskstats(std::string_view text) {
    std::vector<DiskCounters> disks;
    forEachLine(text, [&disks](std::string_view line) {
        // major minor name reads merged sectors ms writes merged sectors …
        const auto fields = splitFields(line);
        if (fields.size() < 10) {
            return;
        }
        const auto read = parseInteger<std::uint64_t>(fields[5]);
        const auto written = parseInteger<std::uint64_t>(fields[9]);
        if (read && written) {
            disks.push_back(DiskCounters{
                .name = std::string(fields[2]), .sectorsRead = *read, .sectorsWritten = *written});
        }
    });
    return disks;
}

std::vector<InterfaceCounters> parseNetDev(std::string_view text) {
    std::vector<InterfaceCounters> interfaces;
    forEachLine(text, [&interfaces](std::string_view line) {
        // "  eth0: rx_bytes packets errs drop fifo frame compressed multicast tx_bytes …";
        // the two header lines have no colon before their fields.
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            return;
        }
        const auto fields = splitFields(line.substr(colon + 1));
        if (fields.size() < 9) {
            return;
        }
        const auto received = parseInteger<std::uint64_t>(fields[0]);
        const auto sent = parseInteger<std::uint64_t>(fields[8]);
        if (received && sent) {
            interfaces.push_back(InterfaceCounters{
                .name = std::string(trimWhitespace(line.substr(0, colon))),
                .received = *received,
                .sent = *sent,
            });
        }
    });
    return interfaces;
}

Traffic countedTraffic(const std::vector<InterfaceCounters>& interfaces) {
    const bool anyDevice = std::any_of(interfaces.begin(), interfaces.end(),
                                       [](const auto& interface) { return interface.hasDevice; });
    Traffic traffic;
    for (const auto& interface : interfaces) {
        if (interface.name != "lo" && (interface.hasDevice || !anyDevice)) {
            traffic.received = saturatingAdd(traffic.received, interface.received);
            traffic.sent = saturatingAdd(traffic.sent, interface.sent);
        }
    }
    return traffic;
}

std::optional<std::vector<int>> parseCPUList(std::string_view text) {
    std::vector<int> cpus;
    text = trimWhitespace(text);
    if (text.empty()) {
        return cpus;
    }
    for (const auto range : splitKeepingEmpty(text, ',')) {
        const std::size_t dash = range.find('-');
        const auto first = parseInteger<int>(range.substr(0, dash));
        const auto last =
            dash == std::string_view::npos ? first : parseInteger<int>(range.substr(dash + 1));
        // No kernel numbers its processors this high; a list that claims to
        // is garbled, and would cost memory and time to spell out.
        constexpr int highestCPU = 32767;
        if (!first || !last || *last < *first || *first < 0 || *last > highestCPU) {
            return std::nullopt;
        }
        for (int cpu = *first; cpu <= *last; ++cpu) {
            cpus.push_back(cpu);
        }
    }
    return cpus;
}

std::optional<double> parseUptime(std::string_view text) {
    const auto fields = splitFields(trimWhitespace(text));
    if (fields.empty()) {
        return std::nullopt;
    }
    return parseDecimal(fields[0]);
}

} // namespace loadwarden
