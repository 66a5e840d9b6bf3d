#include "core/measurement/linux/core_topology.h"
#include "core/measurement/linux/system_files.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(ProcSystemFiles, CoreTicksFoldIrqStealAndIowaitIntoTheFourCounters) {
    const auto cores = parseCoreTicks("cpu  10 20 30 40 50 60 70 80 0 0\n"
                                      "cpu0 1 2 3 4 5 6 7 8 9 10\n"
                                      "cpu2 100 0 50 1000 0 0 0 0 0 0\n"
                                      "intr 12345 0 0\n"
                                      "ctxt 99\n");
    ASSERT_EQ(cores.size(), 2u); // the total line is not a core; cpu1 is offline
    EXPECT_EQ(cores[0].cpu, 0);
    EXPECT_EQ(cores[0].ticks,
              (CPUTicks{.user = 1, .system = 3 + 6 + 7 + 8, .idle = 4 + 5, .nice = 2}));
    EXPECT_EQ(cores[1].cpu, 2);
    EXPECT_EQ(cores[1].ticks, (CPUTicks{.user = 100, .system = 50, .idle = 1000, .nice = 0}));
}

TEST(ProcSystemFiles, MemoryPartsAddUpToWhatLinuxCallsUsed) {
    const auto meminfo = parseMeminfo("MemTotal:       16000000 kB\n"
                                      "MemFree:         2000000 kB\n"
                                      "MemAvailable:   10000000 kB\n"
                                      "Buffers:          100000 kB\n"
                                      "Cached:          5000000 kB\n"
                                      "Shmem:            300000 kB\n"
                                      "SwapTotal:       4000000 kB\n"
                                      "SwapFree:        3000000 kB\n"
                                      "Unevictable:        1000 kB\n"
                                      "SReclaimable:     400000 kB\n"
                                      "SUnreclaim:       200000 kB\n"
                                      "KernelStack:       20000 kB\n"
                                      "PageTables:        79000 kB\n"
                                      "Zswap:             50000 kB\n"
                                      "HugePages_Total:       0\n");
    constexpr std::uint64_t kB = 1024;
    EXPECT_FALSE(meminfo.contains("HugePages_Total"));

    const auto stats = *memoryStatsFromMeminfo(meminfo, 150'000 * kB, MemoryPressure::warning);
    EXPECT_EQ(stats.total, 16'000'000 * kB);
    EXPECT_EQ(stats.used(), 6'000'000 * kB); // MemTotal - MemAvailable
    EXPECT_EQ(stats.wired, 300'000 * kB);
    EXPECT_EQ(stats.compressed, 200'000 * kB);
    EXPECT_EQ(stats.app, 5'500'000 * kB);
    // Shared memory is in Cached and already in used; it is counted once.
    EXPECT_EQ(stats.cached, 5'200'000 * kB);
    EXPECT_EQ(stats.swapTotal, 4'000'000 * kB);
    EXPECT_EQ(stats.swapUsed, 1'000'000 * kB);
    EXPECT_EQ(stats.pressure, MemoryPressure::warning);

    // Kernel figures larger than what is used never push the total past it.
    const auto tight = *memoryStatsFromMeminfo(
        parseMeminfo("MemTotal: 1000 kB\nMemAvailable: 900 kB\nSUnreclaim: 500 kB\n"), 0,
        MemoryPressure::normal);
    EXPECT_EQ(tight.used(), 100 * kB);
    EXPECT_EQ(tight.app, 0u);
    // Nor does a page cache that the kernel reports larger than what is free.
    const auto fullCache = *memoryStatsFromMeminfo(
        parseMeminfo("MemTotal: 1000 kB\nMemAvailable: 100 kB\nCached: 950 kB\n"), 0,
        MemoryPressure::normal);
    EXPECT_EQ(fullCache.used() + fullCache.cached, fullCache.total);
    // A file without the total tells nothing; the reader keeps the machine's size.
    EXPECT_FALSE(
        memoryStatsFromMeminfo(parseMeminfo("MemFree: 10 kB\n"), 0, MemoryPressure::normal));

    EXPECT_EQ(zramCompressedBytes("  8192000  2048000  2400000 0 2400000 10 0 0 0\n"), 2048000u);
    EXPECT_FALSE(zramCompressedBytes("8192000"));
}

TEST(ProcSystemFiles, MemoryPressureFromStallsStepsDownOnlyWellBelowItsMark) {
    const auto stall = parseMemoryStall("some avg10=12.50 avg60=3.00 avg300=1.00 total=123\n"
                                        "full avg10=2.25 avg60=1.00 avg300=0.50 total=45\n");
    ASSERT_TRUE(stall);
    EXPECT_EQ(stall->some, 12.5);
    EXPECT_EQ(stall->full, 2.25);
    EXPECT_FALSE(parseMemoryStall(""));

    using enum MemoryPressure;
    EXPECT_EQ(memoryPressureFromStall({.some = 0.5, .full = 0.0}, normal), normal);
    EXPECT_EQ(memoryPressureFromStall({.some = 10.0, .full = 0.0}, normal), warning);
    EXPECT_EQ(memoryPressureFromStall({.some = 3.0, .full = 2.0}, normal), warning);
    EXPECT_EQ(memoryPressureFromStall({.some = 30.0, .full = 10.0}, normal), critical);
    // Held above half the mark, a level stays; below it, it steps down.
    EXPECT_EQ(memoryPressureFromStall({.some = 20.0, .full = 6.0}, critical), critical);
    EXPECT_EQ(memoryPressureFromStall({.some = 20.0, .full = 4.0}, critical), warning);
    EXPECT_EQ(memoryPressureFromStall({.some = 6.0, .full = 0.0}, warning), warning);
    EXPECT_EQ(memoryPressureFromStall({.some = 6.0, .full = 0.0}, normal), normal);
    EXPECT_EQ(memoryPressureFromStall({.some = 4.0, .full = 0.5}, warning), normal);
}

TEST(ProcSystemFiles, DiskAndInterfaceCounters) {
    const auto disks = parseDiskstats(
        " 253       0 vda 52000 100 4000000 9000 81000 2000 6000000 50000 0 30000 59000\n"
        " 253       1 vda1 51000 100 3900000 8900 80000 2000 5900000 49000 0 29000 58000\n"
        "   7       0 loop0 0 0 0 0 0 0 0 0 0 0 0\n"
        "broken line\n");
    ASSERT_EQ(disks.size(), 3u);
    EXPECT_EQ(disks[0].name, "vda");
    EXPECT_EQ(disks[0].sectorsRead, 4'000'000u);
    EXPECT_EQ(disks[0].sectorsWritten, 6'000'000u);

    auto interfaces = parseNetDev(
        "Inter-|   Receive                            |  Transmit\n"
        " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets\n"
        "    lo: 5000 50 0 0 0 0 0 0 5000 50 0 0 0 0 0 0\n"
        "  eth0: 123456 100 0 0 0 0 0 0 654321 90 0 0 0 0 0 0\n"
        "docker0: 1000 10 0 0 0 0 0 0 2000 20 0 0 0 0 0 0\n");
    ASSERT_EQ(interfaces.size(), 3u);
    EXPECT_EQ(interfaces[1].name, "eth0");
    EXPECT_EQ(interfaces[1].received, 123456u);
    EXPECT_EQ(interfaces[1].sent, 654321u);

    // Without hardware to go by (a container's veth), all but the loopback count.
    const Traffic everything = countedTraffic(interfaces);
    EXPECT_EQ(everything.received, 124456u);
    EXPECT_EQ(everything.sent, 656321u);
    // With hardware, a bridge stacked on it does not count twice.
    interfaces[1].hasDevice = true;
    const Traffic hardware = countedTraffic(interfaces);
    EXPECT_EQ(hardware.received, 123456u);
    EXPECT_EQ(hardware.sent, 654321u);
}

TEST(ProcSystemFiles, CPUListsAndUptime) {
    EXPECT_EQ(parseCPUList("0-3,8,10-11\n"), (std::vector<int>{0, 1, 2, 3, 8, 10, 11}));
    EXPECT_EQ(parseCPUList(""), std::vector<int>{});
    EXPECT_FALSE(parseCPUList("3-1"));
    EXPECT_FALSE(parseCPUList("0,,2"));

    EXPECT_EQ(parseUptime("12345.67 23456.78\n"), 12345.67);
    EXPECT_FALSE(parseUptime(""));
}

TEST(ProcSystemFiles, AGarbledFileNeverStopsTheReader) {
    constexpr std::uint64_t most = UINT64_MAX;
    // Counters that add up past 64 bits stop at the largest value.
    const auto traffic = countedTraffic(
        parseNetDev("Inter-|\n face |\n  eth0: 18446744073709551615 0 0 0 0 0 0 0 1 0 0 0 0 0 0 0\n"
                    " wlan0: 1 0 0 0 0 0 0 0 1 0 0 0 0 0 0 0\n"));
    EXPECT_EQ(traffic.received, most);
    EXPECT_EQ(parseCoreTicks("cpu0 0 0 18446744073709551615 0 0 1 0 0\n")[0].ticks.system, most);
    // A size past 64 bits of bytes is left out; sums of the rest saturate.
    EXPECT_FALSE(parseMeminfo("MemTotal: 18014398509481984 kB\n").contains("MemTotal"));
    const auto stats = memoryStatsFromMeminfo(
        parseMeminfo("MemTotal: 16000000 kB\nMemAvailable: 8000000 kB\n"
                     "Buffers: 18014398509481983 kB\nCached: 18014398509481983 kB\n"),
        0, MemoryPressure::normal);
    ASSERT_TRUE(stats);
    EXPECT_EQ(stats->cached, stats->total - stats->used());
    // No processor numbers that high; no stall above all of the time.
    EXPECT_FALSE(parseCPUList("0-2147483647"));
    EXPECT_FALSE(parseMemoryStall("some avg10=250.00 avg60=0.00 avg300=0.00 total=0\n"));
}

TEST(CoreTopology, KindsGoByCoreNumber) {
    // Intel numbers its performance cores first.
    const CoreTopology intel{.performance = {0, 1, 2, 3}, .efficiency = {4, 5, 6, 7}};
    using enum CoreKind;
    EXPECT_EQ(intel.kinds({0, 1, 4, 5}),
              (std::vector<CoreKind>{performance, performance, efficiency, efficiency}));
    // A core outside both lists means the lists cannot be trusted.
    EXPECT_EQ(intel.kinds({0, 9}), (std::vector<CoreKind>{standard, standard}));

    const auto arm = CoreTopology::fromCapacities({{0, 446}, {1, 446}, {2, 1024}, {3, 1024}});
    EXPECT_EQ(arm.kinds({0, 1, 2, 3}),
              (std::vector<CoreKind>{efficiency, efficiency, performance, performance}));
    const auto alike = CoreTopology::fromCapacities({{0, 1024}, {1, 1024}});
    EXPECT_EQ(alike.kinds({0, 1}), (std::vector<CoreKind>{standard, standard}));
    EXPECT_EQ(CoreTopology{}.kinds({0, 1}), (std::vector<CoreKind>{standard, standard}));
}

} // namespace
} // namespace loadwarden
