#pragma once

// What the sampler asks of the operating system. One implementation per
// platform (app/sampling/linux, app/sampling/darwin), chosen at build time; the sampler's own
// logic never knows which one it talks to.

#include "core/foundation/date.h"
#include "core/measurement/battery.h"
#include "core/measurement/cpu.h"
#include "core/measurement/memory.h"
#include "core/measurement/process_record.h"
#include "core/measurement/thermal.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace loadwarden {

// One process at this tick. The backend fills the fields of the record that
// change while a process runs (pid, ppid, uid, started, cpuTimeNs,
// memoryBytes, disk, energy, threads, state); the sampler adds the rest.
struct ProcessReading {
    ProcessRecord record;
    // The short command name. When it changes under the same pid and start
    // time, the process has started a new program and its facts are stale.
    std::string command;
    // When the counters were read, in seconds of a monotonic clock, if the
    // backend reads processes one by one. A loop over hundreds of processes
    // can be delayed part way; rates then use the time between the two
    // readings of each process rather than between the two ticks.
    std::optional<Seconds> readAt;
    // Percent of one graphics processor the process kept busy, where the
    // system tells; a rate already, like the other figures of ProcessRates.
    std::optional<double> gpuPercent;
};

// Facts that hold for a process's whole life, read once.
struct ProcessFacts {
    std::string path;
    std::string name;
    std::int32_t responsiblePID = 0;
    Architecture arch = Architecture::unknown;
    std::string appID;
    bool isSystemService = false;
};

// Two cumulative byte counters read together: bytes read and written for the
// disks, received and sent for the network interfaces.
struct ByteCounters {
    std::uint64_t in = 0;
    std::uint64_t out = 0;
};

struct ProcessorReading {
    std::vector<CPUTicks> ticks; // one per logical core, in the kernel's order
    std::vector<CoreKind> kinds; // same order
};

struct DiskSpace {
    std::uint64_t free = 0;
    std::uint64_t total = 0;
};

// Every call comes from the sampler's own thread, one at a time. A read that
// fails gives an absent or zero value; none of them throws.
class SamplerBackend {
public:
    virtual ~SamplerBackend() = default;

    virtual std::uint32_t currentUID() = 0;
    virtual std::vector<ProcessReading> processes() = 0;
    virtual ProcessFacts facts(const ProcessReading& process) = 0;
    virtual std::optional<std::string> userName(std::uint32_t uid) = 0;

    virtual ProcessorReading processors() = 0;
    virtual MemoryStats memory() = 0;
    virtual std::optional<double> gpu() = 0;
    virtual std::optional<ByteCounters> diskCounters() = 0;
    virtual std::optional<ByteCounters> interfaceCounters() = 0;
    virtual std::optional<BatteryInfo> battery() = 0;
    virtual ThermalLevel thermal() = 0;
    virtual bool lowPowerMode() = 0;
    virtual Seconds uptime() = 0;
    virtual std::optional<DiskSpace> diskSpace() = 0;
};

// The backend of the platform this program was built for.
std::unique_ptr<SamplerBackend> makePlatformBackend();

} // namespace loadwarden
