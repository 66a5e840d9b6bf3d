#include "app/sampling/linux/linux_processes.h"

#include "app/foundation/clock.h"
#include "app/foundation/linux/start_date.h"
#include "app/sampling/linux/kernel_files.h"
#include "core/foundation/checked_arithmetic.h"
#include "core/grouping/linux/app_identity.h"
#include "core/measurement/linux/process_files.h"

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

} // namespace

LinuxProcesses::LinuxProcesses()
    : ticksPerSecond_(static_cast<double>(sysconf(_SC_CLK_TCK))),
      pageSize_(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      keepLimit_(processesWithOpenFiles()) {}

std::vector<ProcessReading> LinuxProcesses::read() {
    std::vector<ProcessReading> readings;
    std::unordered_map<int, OpenFiles> stillOpen;
    stillOpen.reserve(open_.size());
    for (const int pid : KernelFiles::processIDs()) {
        OpenFiles files;
        if (const auto found = open_.find(pid); found != open_.end()) {
            files = std::move(found->second);
        }
        if (auto reading = readOne(pid, files, stillOpen.size() < keepLimit_)) {
            readings.push_back(std::move(*reading));
        }
        if (files.stat.isOpen() || files.io.isOpen()) {
            stillOpen.emplace(pid, std::move(files));
        }
    }
    // The files of processes that ended close here.
    open_ = std::move(stillOpen);
    return readings;
}

std::optional<ProcessReading> LinuxProcesses::readOne(int pid, OpenFiles& files, bool keep) {
    // A process that ended since the listing simply has no files any more.
    if (!files.stat.read(KernelFiles::processFile(pid, "stat"), stat_, keep)) {
        return std::nullopt;
    }
    const auto stat = ProcStat::parse(stat_);
    if (!stat || stat->isKernelThread()) {
        return std::nullopt;
    }
    // The directory of a process belongs to its effective user, whatever the
    // process allows: one stat call instead of reading and parsing its status.
    const auto uid = KernelFiles::owner("/proc/" + std::to_string(pid));
    if (!uid) {
        return std::nullopt;
    }
    ProcessReading reading;
    ProcessRecord& record = reading.record;
    record.pid = pid;
    record.ppid = stat->ppid;
    record.uid = *uid;
    record.started = startDateFromTicks(stat->startTicks);
    record.cpuTimeNs = cpuTimeNs(pid, checkedAdd(stat->userTicks, stat->systemTicks));
    reading.readAt = monotonicSeconds();
    record.memoryBytes = checkedMultiply(stat->residentPages, pageSize_);
    // Another user's io file is closed to us: its disk bytes stay absent.
    if (files.io.read(KernelFiles::processFile(pid, "io"), io_, keep)) {
        if (const auto io = parseProcIO(io_)) {
            record.diskReadBytes = io->readBytes;
            record.diskWrittenBytes = io->writeBytes;
        }
    }
    record.threads = stat->threads;
    record.state = runStateFromProcLetter(stat->state);
    reading.command = stat->comm;
    return reading;
}

std::uint64_t LinuxProcesses::cpuTimeNs(int pid, std::uint64_t ticks) const {
    // The process's CPU clock counts in nanoseconds, where stat counts in
    // hundredths of a second; it is open for every user's processes.
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(pid, &clock) == 0 && clock_gettime(clock, &used) == 0) {
        return checkedAdd(checkedMultiply(static_cast<std::uint64_t>(used.tv_sec), 1'000'000'000),
                          static_cast<std::uint64_t>(used.tv_nsec));
    }
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
