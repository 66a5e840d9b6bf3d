#include "app/sampling/linux/linux_processes.h"

#include "app/foundation/clock.h"
#include "app/foundation/linux/start_date.h"
#include "core/foundation/checked_arithmetic.h"
#include "core/grouping/linux/app_identity.h"

#include <algorithm>
#include <ctime>
#include <sys/resource.h>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::size_t elfHeaderBytes = 20;

// Two files per process stay open between ticks. The soft limit on open
// files is raised to the hard one for them; what is left after a reserve for
// everything else decides how many processes keep theirs.
std::size_t processesWithOpenFiles() {
    constexpr rlim_t wanted = 1 << 16;
    constexpr rlim_t reserve = 256;
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0) {
        return 0;
    }
    if (files.rlim_cur < wanted && files.rlim_cur < files.rlim_max) {
        files.rlim_cur = std::min(wanted, files.rlim_max);
        setrlimit(RLIMIT_NOFILE, &files);
        getrlimit(RLIMIT_NOFILE, &files);
    }
    return files.rlim_cur > reserve ? static_cast<std::size_t>((files.rlim_cur - reserve) / 2) : 0;
}

// The processor time of a process to the nanosecond, from its clock, which
// is open for every user's processes. The clock's id is made as the kernel
// defines it, as clock_getcpuclockid does but without its extra system call
// to learn whether the process exists: the reading tells that too.
std::optional<std::uint64_t> exactCPUTimeNs(int pid) {
    constexpr clockid_t wholeProcess = 2; // CPUCLOCK_SCHED
    const clockid_t clock = static_cast<clockid_t>(~static_cast<unsigned>(pid) << 3) | wholeProcess;
    timespec used{};
    if (clock_gettime(clock, &used) != 0) {
        return std::nullopt;
    }
    return checkedAdd(checkedMultiply(static_cast<std::uint64_t>(used.tv_sec), 1'000'000'000),
                      static_cast<std::uint64_t>(used.tv_nsec));
}

} // namespace

LinuxProcesses::LinuxProcesses()
    : ticksPerSecond_(static_cast<double>(sysconf(_SC_CLK_TCK))),
      pageSize_(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      keepLimit_(processesWithOpenFiles()) {}

std::vector<ProcessReading> LinuxProcesses::read() {
    ++listing_;
    std::vector<ProcessReading> readings;
    readings.reserve(lastCount_);
    std::size_t keptOpen = 0;
    for (const int pid : directory_.processIDs()) {
        Listed& listed = listed_[pid];
        listed.listing = listing_;
        if (auto reading = readOne(pid, listed, keptOpen < keepLimit_)) {
            readings.push_back(std::move(*reading));
        }
        if (listed.stat.isOpen() || listed.io.isOpen()) {
            ++keptOpen;
        }
    }
    // The files of processes that ended close here.
    std::erase_if(listed_, [this](const auto& entry) { return entry.second.listing != listing_; });
    lastCount_ = readings.size();
    return readings;
}

std::optional<ProcessReading> LinuxProcesses::readOne(int pid, Listed& listed, bool keep) {
    // A process that ended since the listing simply has no files any more.
    const auto text = listed.stat.read(ProcessFilePath(pid, "stat"), buffer_, keep);
    const auto stat = text ? ProcStat::parse(*text) : std::nullopt;
    if (!stat || stat->isKernelThread()) {
        return std::nullopt;
    }
    const auto exactCPUTime = exactCPUTimeNs(pid);
    const std::uint64_t cpuTimeNs =
        exactCPUTime ? *exactCPUTime
                     : ticksToNanoseconds(checkedAdd(stat->userTicks, stat->systemTicks));
    const Seconds readAt = monotonicSeconds();
    // Only a clock to the nanosecond tells that a process has not run. One
    // running now on another core may not have its latest moments counted
    // yet, so that one is read afresh as well.
    const bool stillSinceLastRun = exactCPUTime && listed.lastRun &&
                                   listed.lastRun->startTicks == stat->startTicks &&
                                   listed.lastRun->cpuTimeNs == *exactCPUTime && stat->state != 'R';
    if (!stillSinceLastRun) {
        // The folder of a process belongs to its effective user, whatever the
        // process allows: one stat call instead of reading and parsing its status.
        const auto uid = directory_.owner(pid);
        if (!uid) {
            return std::nullopt;
        }
        listed.lastRun = LastRun{.startTicks = stat->startTicks,
                                 .cpuTimeNs = cpuTimeNs,
                                 .uid = *uid,
                                 .io = readIO(pid, listed.io, keep)};
    }
    const LastRun lastRun = *listed.lastRun;
    if (!exactCPUTime) {
        listed.lastRun.reset();
    }

    ProcessReading reading;
    ProcessRecord& record = reading.record;
    record.pid = pid;
    record.ppid = stat->ppid;
    record.uid = lastRun.uid;
    record.started = startDateFromTicks(stat->startTicks);
    record.cpuTimeNs = cpuTimeNs;
    reading.readAt = readAt;
    record.memoryBytes = checkedMultiply(stat->residentPages, pageSize_);
    // Another user's io file is closed to us: its disk bytes stay absent.
    if (lastRun.io) {
        record.diskReadBytes = lastRun.io->readBytes;
        record.diskWrittenBytes = lastRun.io->writeBytes;
    }
    record.threads = stat->threads;
    record.state = runStateFromProcLetter(stat->state);
    reading.command = stat->comm;
    return reading;
}

std::optional<ProcIO> LinuxProcesses::readIO(int pid, KeptFile& file, bool keep) {
    const auto text = file.read(ProcessFilePath(pid, "io"), buffer_, keep);
    return text ? parseProcIO(*text) : std::nullopt;
}

std::uint64_t LinuxProcesses::ticksToNanoseconds(std::uint64_t ticks) const {
    return static_cast<std::uint64_t>(static_cast<double>(ticks) / ticksPerSecond_ * 1e9);
}

ProcessFacts LinuxProcesses::facts(const ProcessReading& process) const {
    const int pid = process.record.pid;
    const std::string link =
        KernelFiles::linkTarget(KernelFiles::processFile(pid, "exe")).value_or("");
    const std::string cmdline =
        KernelFiles::text(KernelFiles::processFile(pid, "cmdline")).value_or("");
    const auto header = KernelFiles::head(KernelFiles::processFile(pid, "exe"), elfHeaderBytes);
    const std::string cgroup =
        KernelFiles::text(KernelFiles::processFile(pid, "cgroup")).value_or("");
    return ProcessFacts{
        .path = std::string(executablePathFromLink(link)),
        .name = processDisplayName(process.command, firstArgument(cmdline), link),
        .responsiblePID = pid,
        .arch = header ? architectureFromELFHeader(*header) : Architecture::unknown,
        .appID = appIDFromCgroup(cgroup),
        .isSystemService = pid == 1 || isSystemService(cgroup),
    };
}

} // namespace loadwarden
