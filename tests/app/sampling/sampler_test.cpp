#include "app/sampling/sampler.h"

#include <gtest/gtest.h>
#include <map>
#include <stdexcept>

namespace loadwarden {
namespace {

// A machine whose every figure the test sets, and which counts the reads
// that the sampler is meant to save.
class FakeBackend final : public SamplerBackend {
public:
    std::uint32_t ownUID = 501;
    std::vector<ProcessReading> table;
    std::map<std::uint32_t, std::string> names;
    std::vector<CPUTicks> ticks{{}, {}};
    MemoryStats memoryStats;
    std::optional<ByteCounters> disk;
    std::optional<ByteCounters> interfaces;
    std::optional<DiskSpace> space;

    int processReads = 0;
    int factReads = 0;
    int spaceReads = 0;
    std::vector<std::uint32_t> nameLookups;

    std::uint32_t currentUID() override { return ownUID; }
    std::vector<ProcessReading> processes() override {
        ++processReads;
        return table;
    }
    ProcessFacts facts(const ProcessReading& process) override {
        ++factReads;
        return ProcessFacts{.path = "/bin/" + process.command,
                            .name = process.command,
                            .responsiblePID = process.record.pid,
                            .arch = Architecture::intel};
    }
    std::optional<std::string> userName(std::uint32_t uid) override {
        nameLookups.push_back(uid);
        const auto found = names.find(uid);
        return found == names.end() ? std::nullopt : std::optional(found->second);
    }
    ProcessorReading processors() override {
        return {.ticks = ticks, .kinds = std::vector(ticks.size(), CoreKind::standard)};
    }
    MemoryStats memory() override { return memoryStats; }
    std::optional<double> gpu() override { return std::nullopt; }
    std::optional<ByteCounters> diskCounters() override { return disk; }
    std::optional<ByteCounters> interfaceCounters() override { return interfaces; }
    std::optional<BatteryInfo> battery() override { return std::nullopt; }
    ThermalLevel thermal() override { return ThermalLevel::fair; }
    bool lowPowerMode() override { return false; }
    Seconds uptime() override { return 3600.0; }
    std::optional<DiskSpace> diskSpace() override {
        ++spaceReads;
        return space;
    }
};

ProcessReading process(std::int32_t pid, std::string command, Date started, std::uint64_t cpuTimeNs,
                       std::uint32_t uid = 501) {
    return ProcessReading{.record = {.pid = pid,
                                     .uid = uid,
                                     .started = started,
                                     .cpuTimeNs = cpuTimeNs,
                                     .diskReadBytes = 0,
                                     .diskWrittenBytes = 0,
                                     .state = RunState::running},
                          .command = std::move(command)};
}

class SamplerTest : public testing::Test {
protected:
    SamplerTest() {
        auto owned = std::make_unique<FakeBackend>();
        machine = owned.get();
        sampler = std::make_unique<Sampler>(std::move(owned), nullptr, [this] { return now; });
    }

    Snapshot tickAt(Date date) {
        now = date;
        return sampler->sample(true, true, 2.0).get();
    }

    static const LiveProcess& find(const Snapshot& snapshot, std::int32_t pid) {
        for (const auto& live : snapshot.processes) {
            if (live.record.pid == pid) {
                return live;
            }
        }
        throw std::runtime_error("no process " + std::to_string(pid));
    }

    Date now = 1000.0; // read by the sampler's thread only while the test waits on it
    FakeBackend* machine = nullptr;
    std::unique_ptr<Sampler> sampler;
};

TEST_F(SamplerTest, FirstTickHasNoRatesThenRatesComeOverTheRealElapsedTime) {
    machine->table = {process(10, "worker", 500.0, 1'000'000'000)};
    machine->ticks = {{.user = 100, .idle = 100}, {.user = 100, .idle = 100}};
    machine->disk = ByteCounters{.in = 1000, .out = 1000};
    const Snapshot first = tickAt(1000.0);
    EXPECT_EQ(first.interval, 0.0);
    EXPECT_EQ(find(first, 10).rates.cpuPercent, 0.0);
    EXPECT_FALSE(find(first, 10).rates.diskBytesPerSecond);
    EXPECT_EQ(first.system.coreUsage, (std::vector<double>{0.0, 0.0}));
    EXPECT_EQ(first.system.diskReadPerSecond, 0.0);

    machine->table = {process(10, "worker", 500.0, 4'000'000'000)};
    machine->ticks = {{.user = 200, .idle = 100}, {.user = 150, .idle = 150}};
    const Snapshot second = tickAt(1003.0);
    EXPECT_EQ(second.interval, 3.0);
    EXPECT_DOUBLE_EQ(find(second, 10).rates.cpuPercent, 100.0); // 3 s of CPU in 3 s
    EXPECT_EQ(second.system.coreUsage, (std::vector<double>{1.0, 0.5}));
}

TEST_F(SamplerTest, AFailedProcessReadKeepsTheLastTableForTheNextRates) {
    machine->table = {process(10, "worker", 500.0, 0)};
    tickAt(1000.0);
    machine->table.clear(); // the process table could not be read
    EXPECT_TRUE(tickAt(1002.0).processes.empty());
    machine->table = {process(10, "worker", 500.0, 4'000'000'000)};
    const auto back = find(tickAt(1004.0), 10);
    EXPECT_DOUBLE_EQ(back.rates.cpuPercent, 100.0); // 4 s of CPU over 4 s, not 2
    EXPECT_EQ(machine->factReads, 1);
}

TEST_F(SamplerTest, ProcessesReadLateInATickAreMeasuredOverTheirOwnSpan) {
    machine->table = {process(10, "worker", 500.0, 0), process(11, "late", 500.0, 0)};
    machine->table[0].readAt = 50.0;
    machine->table[1].readAt = 50.5;
    tickAt(1000.0);
    machine->table = {process(10, "worker", 500.0, 2'000'000'000),
                      process(11, "late", 500.0, 1'500'000'000)};
    machine->table[0].readAt = 52.0;
    machine->table[1].readAt = 52.0;
    const Snapshot snapshot = tickAt(1002.0);
    EXPECT_DOUBLE_EQ(find(snapshot, 10).rates.cpuPercent, 100.0);
    EXPECT_DOUBLE_EQ(find(snapshot, 11).rates.cpuPercent, 100.0); // 1.5 s in 1.5 s, not 2
}

TEST_F(SamplerTest, FactsAreReadOncePerProcessLife) {
    machine->table = {process(10, "bash", 500.0, 0)};
    tickAt(1000.0);
    tickAt(1002.0);
    EXPECT_EQ(machine->factReads, 1);

    // The same process started a new program: same pid, same start, new command.
    machine->table = {process(10, "sleep", 500.0, 1'000'000'000)};
    EXPECT_EQ(find(tickAt(1004.0), 10).record.name, "sleep");
    EXPECT_EQ(machine->factReads, 2);

    // The pid went to a new process: its facts are its own and its rates start afresh.
    machine->table = {process(10, "vim", 900.0, 50'000'000'000)};
    const auto reused = find(tickAt(1006.0), 10);
    EXPECT_EQ(reused.record.name, "vim");
    EXPECT_EQ(reused.record.path, "/bin/vim");
    EXPECT_EQ(reused.rates.cpuPercent, 0.0);
    EXPECT_EQ(machine->factReads, 3);
}

TEST_F(SamplerTest, AProcessMissingFromOneTableComesBackWithoutItsOldCounters) {
    machine->table = {process(10, "worker", 500.0, 0), process(11, "blinker", 600.0, 0)};
    tickAt(1000.0);
    // Its files could not be read this time, as for a process ending.
    machine->table = {process(10, "worker", 500.0, 2'000'000'000)};
    tickAt(1002.0);
    machine->table = {process(10, "worker", 500.0, 4'000'000'000),
                      process(11, "blinker", 600.0, 4'000'000'000)};
    const Snapshot back = tickAt(1004.0);
    EXPECT_DOUBLE_EQ(find(back, 10).rates.cpuPercent, 100.0);
    // Nothing to compare with: not 4 s of CPU over 2 s.
    EXPECT_EQ(find(back, 11).rates.cpuPercent, 0.0);
    EXPECT_EQ(machine->factReads, 3);
}

TEST_F(SamplerTest, UserNamesAreLookedUpOncePerUid) {
    machine->names = {{501, "ada"}, {0, "root"}};
    machine->table = {process(10, "a", 500.0, 0, 501), process(11, "b", 500.0, 0, 501),
                      process(12, "c", 500.0, 0, 0), process(13, "d", 500.0, 0, 4321)};
    tickAt(1000.0);
    const Snapshot snapshot = tickAt(1002.0);
    EXPECT_EQ(find(snapshot, 10).record.user, "ada");
    EXPECT_TRUE(find(snapshot, 10).record.isOwn);
    EXPECT_EQ(find(snapshot, 12).record.user, "root");
    EXPECT_FALSE(find(snapshot, 12).record.isOwn);
    EXPECT_EQ(find(snapshot, 13).record.user, "4321"); // no name: the number
    EXPECT_EQ(machine->nameLookups.size(), 3u);
}

TEST_F(SamplerTest, DiskAndInterfaceRatesCompareWithTheLastSuccessfulReading) {
    machine->disk = ByteCounters{.in = 0, .out = 0};
    machine->interfaces = ByteCounters{.in = 5000, .out = 7000};
    tickAt(1000.0);
    machine->disk = ByteCounters{.in = 10'000'000, .out = 0};
    machine->interfaces = ByteCounters{.in = 9000, .out = 6000}; // a counter went back
    const Snapshot grown = tickAt(1002.0);
    EXPECT_EQ(grown.system.diskReadPerSecond, 5'000'000.0);
    EXPECT_EQ(grown.system.diskWritePerSecond, 0.0);
    EXPECT_EQ(grown.system.networkInPerSecond, 2000.0);
    EXPECT_EQ(grown.system.networkOutPerSecond, 0.0);

    machine->disk.reset();
    const Snapshot failed = tickAt(1004.0);
    EXPECT_EQ(failed.system.diskReadPerSecond, 0.0);

    machine->disk = ByteCounters{.in = 14'000'000, .out = 2'000'000};
    const Snapshot recovered = tickAt(1006.0);
    EXPECT_EQ(recovered.system.diskReadPerSecond, 2'000'000.0); // against 10 MB, not 0
    EXPECT_EQ(recovered.system.diskWritePerSecond, 1'000'000.0);
}

TEST_F(SamplerTest, DiskSpaceIsReadOnTheFirstTickThenAtMostEvery30Seconds) {
    machine->space = DiskSpace{.free = 40, .total = 100};
    EXPECT_EQ(tickAt(1000.0).system.diskFree, 40u);
    machine->space = DiskSpace{.free = 30, .total = 100};
    EXPECT_EQ(tickAt(1030.0).system.diskFree, 40u);
    EXPECT_EQ(machine->spaceReads, 1);
    EXPECT_EQ(tickAt(1030.5).system.diskFree, 30u);
    EXPECT_EQ(machine->spaceReads, 2);

    // A failed read keeps the last figures.
    machine->space.reset();
    const Snapshot failed = tickAt(1061.0);
    EXPECT_EQ(failed.system.diskFree, 30u);
    EXPECT_EQ(failed.system.diskTotal, 100u);
}

TEST_F(SamplerTest, QuickSystemSampleRefreshesOnlyProcessorAndMemory) {
    machine->table = {process(10, "worker", 500.0, 0)};
    machine->disk = ByteCounters{};
    tickAt(1000.0);
    machine->disk = ByteCounters{.in = 4000, .out = 0};
    const Snapshot full = tickAt(1002.0);

    machine->ticks = {{.user = 10, .idle = 10}, {.idle = 20}};
    machine->memoryStats.total = 8'000'000'000;
    const SystemSample quick = sampler->quickSystemSample().get();
    EXPECT_EQ(quick.coreUsage, (std::vector<double>{0.5, 0.0}));
    EXPECT_EQ(quick.memory.total, 8'000'000'000u);
    EXPECT_EQ(quick.diskReadPerSecond, full.system.diskReadPerSecond);
    EXPECT_EQ(machine->processReads, 2);

    // The next full tick measures the processor from the quick sample on.
    machine->ticks = {{.user = 10, .idle = 20}, {.user = 10, .idle = 30}};
    EXPECT_EQ(tickAt(1004.0).system.coreUsage, (std::vector<double>{0.0, 0.5}));
}

} // namespace
} // namespace loadwarden
