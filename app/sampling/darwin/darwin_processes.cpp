#include "app/sampling/darwin/darwin_processes.h"

#include "app/runner/spawn.h"
#include "app/sampling/darwin/kernel_settings.h"
#include "core/measurement/executable_name.h"
#include "core/measurement/ps_line.h"
#include "core/text/utf8_repair.h"

#include <cstring>
#include <dlfcn.h>
#include <libproc.h>
#include <sys/proc_info.h>
#include <sys/resource.h>
#include <sys/sysctl.h>
#include <unordered_set>

namespace loadwarden {

namespace {

constexpr int translatedFlag = 0x20000; // P_TRANSLATED: runs under Rosetta

// The kernel's process states (SRUN, SSLEEP, SSTOP, SZOMB).
constexpr std::uint32_t kernelRunning = 2;
constexpr std::uint32_t kernelSleeping = 3;
constexpr std::uint32_t kernelStopped = 4;
constexpr std::uint32_t kernelZombie = 5;

constexpr double psTimeout = 20.0;

// Version 6 of the kernel's resource usage, new in macOS 13: version 5 and
// then these. The macOS 12 headers do not have it and a macOS 12 kernel
// refuses it, so it is asked for only where the running system has it.
struct ResourceUsageV6 {
    rusage_info_v5 v5;
    std::uint64_t userPTime;
    std::uint64_t systemPTime;
    std::uint64_t pInstructions;
    std::uint64_t pCycles;
    std::uint64_t energyNJ;
    std::uint64_t pEnergyNJ;
    std::uint64_t laterFields[14];
};
constexpr int resourceUsageV6 = 6;

// Version 4, which every supported system gives: processor and disk figures.
std::optional<rusage_info_v4> resourceUsage(pid_t pid) {
    rusage_info_v4 usage{};
    if (proc_pid_rusage(pid, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&usage)) != 0) {
        return std::nullopt;
    }
    return usage;
}

// The process's energy in nanojoules, on systems that count it.
std::optional<std::uint64_t> energyNJ(pid_t pid) {
    if (__builtin_available(macOS 13.0, *)) {
        ResourceUsageV6 usage{};
        if (proc_pid_rusage(pid, resourceUsageV6, reinterpret_cast<rusage_info_t*>(&usage)) == 0) {
            return usage.energyNJ;
        }
    }
    return std::nullopt;
}

// The lines of one complete run of the process-status tool; none when it
// could not start or was killed part way, which would list only some processes.
std::vector<PSLine> psLines() {
    const auto run = Spawn::run("/bin/ps", {"-axo", "pid=,ppid=,uid=,rss=,time=,state=,comm="},
                                psTimeout, std::nullopt);
    if (!run || run->stopped) {
        return {};
    }
    return PSLine::parseOutput(repairUTF8(run->output));
}

std::vector<pid_t> kernelPids() {
    const int estimate = proc_listallpids(nullptr, 0);
    if (estimate <= 0) {
        return {};
    }
    // Room for processes started between the calls; a full buffer may have cut
    // the list short, so it is asked again with twice the room.
    std::vector<pid_t> pids(static_cast<std::size_t>(estimate) + 64);
    while (true) {
        const int count =
            proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pid_t)));
        if (count <= 0) {
            return {};
        }
        if (static_cast<std::size_t>(count) < pids.size()) {
            pids.resize(static_cast<std::size_t>(count));
            return pids;
        }
        pids.resize(pids.size() * 2);
    }
}

std::optional<proc_bsdinfo> bsdInfo(pid_t pid) {
    proc_bsdinfo info{};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) !=
        static_cast<int>(sizeof info)) {
        return std::nullopt;
    }
    return info;
}

std::optional<kinfo_proc> processTableEntry(pid_t pid) {
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
    kinfo_proc entry{};
    std::size_t size = sizeof entry;
    if (sysctl(name, 4, &entry, &size, nullptr, 0) != 0 || size == 0) {
        return std::nullopt;
    }
    return entry;
}

Date startDate(pid_t pid, const std::optional<proc_bsdinfo>& info) {
    if (info) {
        return static_cast<double>(info->pbi_start_tvsec) +
               static_cast<double>(info->pbi_start_tvusec) / 1'000'000.0;
    }
    if (const auto entry = processTableEntry(pid)) {
        const timeval started = entry->kp_proc.p_starttime;
        return static_cast<double>(started.tv_sec) +
               static_cast<double>(started.tv_usec) / 1'000'000.0;
    }
    return 0.0;
}

RunState runStateFromKernelStatus(std::uint32_t status) {
    switch (status) {
    case kernelRunning:
        return RunState::running;
    case kernelSleeping:
        return RunState::sleeping;
    case kernelStopped:
        return RunState::stopped;
    case kernelZombie:
        return RunState::zombie;
    default:
        return RunState::other;
    }
}

} // namespace

DarwinProcesses::DarwinProcesses()
    : timebase_(KernelSettings::timebase()),
      isARM_(KernelSettings::integer("hw.optional.arm64") == 1) {
    // Not a published interface: looked up among the loaded code, used when there.
    void* symbol = dlsym(RTLD_DEFAULT, "responsibility_get_pid_responsible_for_pid");
    std::memcpy(&responsible_, &symbol, sizeof responsible_);
}

std::vector<ProcessReading> DarwinProcesses::read() const {
    // The kernel tells little about other users' processes: without the tool's
    // list they would drop out for a tick, so the tick has no processes at all.
    const auto lines = psLines();
    if (lines.empty()) {
        return {};
    }
    const auto pids = kernelPids();
    const std::unordered_set<pid_t> alive(pids.begin(), pids.end());
    std::unordered_set<pid_t> listed;
    std::vector<ProcessReading> readings;
    readings.reserve(pids.size());
    for (const auto& line : lines) {
        // The tool itself, and whatever ended while it ran, are gone.
        if (!alive.contains(line.pid)) {
            continue;
        }
        listed.insert(line.pid);
        ProcessReading reading;
        reading.record.pid = line.pid;
        reading.record.ppid = line.ppid;
        reading.record.uid = line.uid;
        reading.record.cpuTimeNs = line.cpuTimeNs;
        reading.record.memoryBytes = line.rssBytes;
        reading.record.state = line.state;
        reading.command = line.command;
        addKernelFigures(reading);
        readings.push_back(std::move(reading));
    }
    for (const pid_t pid : pids) {
        if (!listed.contains(pid)) {
            if (auto reading = fromKernel(pid)) {
                readings.push_back(std::move(*reading));
            }
        }
    }
    return readings;
}

void DarwinProcesses::addKernelFigures(ProcessReading& reading) const {
    ProcessRecord& record = reading.record;
    record.started = startDate(record.pid, bsdInfo(record.pid));
    if (const auto usage = resourceUsage(record.pid)) {
        record.diskReadBytes = usage->ri_diskio_bytesread;
        record.diskWrittenBytes = usage->ri_diskio_byteswritten;
    }
    record.energyNJ = energyNJ(record.pid);
    // Memory is the resident size for every process, the figure ps gives for
    // all of them; the footprint would be readable for the user's own
    // processes only, and a group must not add two measures.
    proc_taskinfo task{};
    if (proc_pidinfo(record.pid, PROC_PIDTASKINFO, 0, &task, sizeof task) ==
        static_cast<int>(sizeof task)) {
        record.threads = task.pti_threadnum;
        record.memoryBytes = task.pti_resident_size;
    }
}

std::optional<ProcessReading> DarwinProcesses::fromKernel(pid_t pid) const {
    const auto info = bsdInfo(pid);
    const auto usage = resourceUsage(pid);
    if (!info || !usage) {
        return std::nullopt;
    }
    ProcessReading reading;
    reading.record.pid = pid;
    reading.record.ppid = static_cast<std::int32_t>(info->pbi_ppid);
    reading.record.uid = info->pbi_uid;
    reading.record.cpuTimeNs = static_cast<std::uint64_t>(
        timebase_ * static_cast<double>(usage->ri_user_time + usage->ri_system_time));
    reading.record.state = runStateFromKernelStatus(info->pbi_status);
    char path[PROC_PIDPATHINFO_MAXSIZE] = {};
    reading.command = proc_pidpath(pid, path, static_cast<std::uint32_t>(sizeof path)) > 0
                          ? path
                          : info->pbi_comm;
    addKernelFigures(reading);
    return reading;
}

Architecture DarwinProcesses::architecture(pid_t pid) const {
    if (!isARM_) {
        return Architecture::intel;
    }
    const auto entry = processTableEntry(pid);
    if (!entry) {
        return Architecture::unknown;
    }
    return (entry->kp_proc.p_flag & translatedFlag) != 0 ? Architecture::rosetta
                                                         : Architecture::appleSilicon;
}

ProcessFacts DarwinProcesses::facts(const ProcessReading& process) const {
    const pid_t pid = process.record.pid;
    char path[PROC_PIDPATHINFO_MAXSIZE] = {};
    const std::string executable =
        proc_pidpath(pid, path, static_cast<std::uint32_t>(sizeof path)) > 0 ? path : "";
    pid_t responsible = responsible_ != nullptr ? responsible_(pid) : -1;
    return ProcessFacts{
        .path = executable,
        .name = executableName(executable, process.command),
        .responsiblePID = responsible > 0 ? responsible : pid,
        .arch = architecture(pid),
    };
}

} // namespace loadwarden
