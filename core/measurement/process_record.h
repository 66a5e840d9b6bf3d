#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"
#include "core/foundation/raw_value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace loadwarden {

enum class RunState { running, sleeping, stopped, zombie, other };

template <>
struct RawValues<RunState> {
    static constexpr RawValueTable<RunState, 5> table{{
        {RunState::running, "running"},
        {RunState::sleeping, "sleeping"},
        {RunState::stopped, "stopped"},
        {RunState::zombie, "zombie"},
        {RunState::other, "other"},
    }};
};

// A Mac reports `appleSilicon`, `intel` or `rosetta`; other systems name
// the instruction set the program was built for.
enum class Architecture { appleSilicon, intel, rosetta, x86_64, x86, arm64, arm, unknown };

template <>
struct RawValues<Architecture> {
    static constexpr RawValueTable<Architecture, 8> table{{
        {Architecture::appleSilicon, "appleSilicon"},
        {Architecture::intel, "intel"},
        {Architecture::rosetta, "rosetta"},
        {Architecture::x86_64, "x86_64"},
        {Architecture::x86, "x86"},
        {Architecture::arm64, "arm64"},
        {Architecture::arm, "arm"},
        {Architecture::unknown, "unknown"},
    }};
};

// In words, as a person reads it; empty when unknown.
constexpr std::string_view label(Architecture architecture) {
    switch (architecture) {
    case Architecture::appleSilicon:
        return "Apple silicon";
    case Architecture::intel:
        return "Intel";
    case Architecture::rosetta:
        return "Intel (Rosetta)";
    case Architecture::x86_64:
        return "x86-64";
    case Architecture::x86:
        return "x86";
    case Architecture::arm64:
        return "ARM64";
    case Architecture::arm:
        return "ARM";
    case Architecture::unknown:
        return {};
    }
    return {};
}

// Everything known about one process at one tick. What the kernel would not
// tell stays absent.
struct ProcessRecord {
    std::int32_t pid = 0;
    std::int32_t ppid = 0;
    std::int32_t responsiblePID = 0; // the process itself when none is known
    std::uint32_t uid = 0;
    std::string user;
    std::string name;
    std::string path;
    Date started = 0.0; // 0 when unknown
    bool isOwn = false;
    std::uint64_t cpuTimeNs = 0;
    std::uint64_t memoryBytes = 0;
    std::optional<std::uint64_t> diskReadBytes;
    std::optional<std::uint64_t> diskWrittenBytes;
    std::optional<std::uint64_t> energyNJ;
    std::optional<int> threads;
    RunState state = RunState::other;
    Architecture arch = Architecture::unknown;
    // Linux: the desktop-entry id of the app that launched the process (from
    // its systemd unit), which plays the part of a bundle; empty elsewhere.
    std::string appID;
    // Run by the system itself whoever it runs as: on Linux pid 1 and the
    // services of the system manager. Never acted on, even by root.
    bool isSystemService = false;

    bool operator==(const ProcessRecord&) const = default;
    auto fields() const {
        return std::tie(pid, ppid, responsiblePID, uid, user, name, path, started, isOwn, cpuTimeNs,
                        memoryBytes, diskReadBytes, diskWrittenBytes, energyNJ, threads, state,
                        arch, appID, isSystemService);
    }
};

// What one process did per second between two ticks.
struct ProcessRates {
    double cpuPercent = 0.0; // 100 = one core busy for the whole interval
    std::optional<double> diskBytesPerSecond;
    std::optional<double> energyWatts;
    std::optional<double> networkInPerSecond;
    std::optional<double> networkOutPerSecond;
    // Percent of one graphics processor, 100 = one kept busy; absent where
    // the system does not tell.
    std::optional<double> gpuPercent;

    bool operator==(const ProcessRates&) const = default;
    auto fields() const {
        return std::tie(cpuPercent, diskBytesPerSecond, energyWatts, networkInPerSecond,
                        networkOutPerSecond, gpuPercent);
    }
};

struct LiveProcess {
    ProcessRecord record;
    ProcessRates rates;

    bool operator==(const LiveProcess&) const = default;
    auto fields() const { return std::tie(record, rates); }
};

} // namespace loadwarden
