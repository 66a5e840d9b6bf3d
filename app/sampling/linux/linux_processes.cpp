#include "app/sampling/linux/linux_processes.h"

#include "app/foundation/clock.h"
#include "app/foundation/linux/start_date.h"
#include "app/sampling/linux/process_clock.h"
#include "core/foundation/checked_arithmetic.h"
#include "core/grouping/linux/app_identity.h"

#include <algorithm>
#include <sys/resource.h>
#include <unistd.h>

namespace loadwarden {

namespace {

constexpr std::size_t elfHeaderBytes = 20;

// Two files per process stay open between ticks: its stat or its statm, and
// its io. The soft limit on open files is raised to the hard one for them;
// what is left after a reserve for everything else decides how many
// processes keep theirs.
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
    ++listing_;
    std::vector<ProcessReading> readings;
    readings.reserve(lastCount_);
    std::size_t keptOpen = 0;
    for (const auto& [pid, inode] : directory_.processes()) {
        Listed& listed = listed_[pid];
        // Another folder under the same pid is another process.
        if (listed.inode != inode) {
            listed = Listed{.inode = inode};
        }
        listed.listing = listing_;
        // A kernel thread stays one for as long as its folder stays.
        if (!listed.kernelThread) {
            if (auto reading = readOne(pid, listed, keptOpen < keepLimit_)) {
                readings.push_back(std::move(*reading));
            }
        }
        if (listed.stat.isOpen() || listed.statm.isOpen() || listed.io.isOpen()) {
            ++keptOpen;
        }
    }
    // The files of processes that ended close here.
    std::erase_if(listed_, [this](const auto& entry) { return entry.second.listing != listing_; });
    checkParents(readings, keptOpen < keepLimit_);
    lastCount_ = readings.size();
    return readings;
}

std::optional<ProcessReading> LinuxProcesses::readOne(int pid, Listed& listed, bool keep) {
    const auto exactCPUTime = processCPUTimeNs(pid);
    const Seconds readAt = monotonicSeconds();
    // Only a clock to the nanosecond tells that a process has not run. One
    // running now on another core may not have its latest moments counted
    // yet, so that one is read afresh as well.
    listed.stillThisListing = exactCPUTime && listed.lastRun &&
                              listed.lastRun->exactCPUTimeNs == exactCPUTime &&
                              listed.lastRun->stat.state != 'R';
    const bool read = listed.stillThisListing ? readMemory(pid, listed, keep)
                                              : readInFull(pid, listed, exactCPUTime, keep);
    if (!read) {
        return std::nullopt;
    }
    return readingOf(pid, *listed.lastRun, readAt);
}

bool LinuxProcesses::readInFull(int pid, Listed& listed, std::optional<std::uint64_t> exactCPUTime,
                                bool keep) {
    // A process that ended since the listing simply has no files any more.
    const auto text = listed.stat.read(ProcessFilePath(pid, "stat"), buffer_, keep);
    auto stat = text ? ProcStat::parse(*text) : std::nullopt;
    if (!stat) {
        return false;
    }
    if (stat->isKernelThread()) {
        listed.kernelThread = true;
        return false;
    }
    // The folder of a process belongs to its effective user, whatever the
    // process allows: one stat call instead of reading and parsing its status.
    const auto uid = directory_.owner(pid);
    if (!uid) {
        return false;
    }
    // Another user's io file is closed to us: its disk bytes stay absent.
    const auto io = listed.io.read(ProcessFilePath(pid, "io"), buffer_, keep);
    listed.lastRun = LastRun{.stat = std::move(*stat),
                             .exactCPUTimeNs = exactCPUTime,
                             .uid = *uid,
                             .io = io ? parseProcIO(*io) : std::nullopt};
    listed.statm = KeptFile(); // while it runs, its stat is the file kept
    return true;
}

bool LinuxProcesses::readMemory(int pid, Listed& listed, bool keep) {
    const auto text = listed.statm.read(ProcessFilePath(pid, "statm"), buffer_, keep);
    const auto resident = text ? parseStatmResidentPages(*text) : std::nullopt;
    if (!resident) {
        return false;
    }
    listed.lastRun->stat.residentPages = *resident;
    listed.stat = KeptFile(); // while it stands still, its statm is the file kept
    return true;
}

// A process that stood still has the parent it had, unless that parent
// ended (its children then go to another) or its pid went to another
// process: such a process is read in full again. Each parent's start is
// noted for the next listing.
void LinuxProcesses::checkParents(std::vector<ProcessReading>& readings, bool keep) {
    std::size_t kept = 0;
    for (std::size_t index = 0; index < readings.size(); ++index) {
        ProcessReading& reading = readings[index];
        const int pid = reading.record.pid;
        Listed& listed = listed_.at(pid);
        if (listed.stillThisListing && !parentStands(*listed.lastRun)) {
            if (!readInFull(pid, listed, listed.lastRun->exactCPUTimeNs, keep)) {
                continue; // it has ended meanwhile
            }
            reading = readingOf(pid, *listed.lastRun, reading.readAt.value_or(0.0));
        }
        listed.lastRun->parentStartTicks = startTicksOf(listed.lastRun->stat.ppid);
        if (kept != index) {
            readings[kept] = std::move(reading);
        }
        ++kept;
    }
    readings.erase(readings.begin() + static_cast<std::ptrdiff_t>(kept), readings.end());
}

bool LinuxProcesses::parentStands(const LastRun& child) const {
    // pid 0 is no process: the parent of the first one and of the kernel's.
    return child.stat.ppid == 0 ||
           (child.parentStartTicks && startTicksOf(child.stat.ppid) == child.parentStartTicks);
}

// The start of a process of this listing that has not ended.
std::optional<std::uint64_t> LinuxProcesses::startTicksOf(int pid) const {
    const auto found = listed_.find(pid);
    if (found == listed_.end() || !found->second.lastRun) {
        return std::nullopt;
    }
    const ProcStat& stat = found->second.lastRun->stat;
    if (stat.state == 'Z' || stat.state == 'X') {
        return std::nullopt;
    }
    return stat.startTicks;
}

ProcessReading LinuxProcesses::readingOf(int pid, const LastRun& run, Seconds readAt) const {
    const ProcStat& stat = run.stat;
    ProcessReading reading;
    ProcessRecord& record = reading.record;
    record.pid = pid;
    record.ppid = stat.ppid;
    record.uid = run.uid;
    record.started = startDateFromTicks(stat.startTicks);
    record.cpuTimeNs = run.exactCPUTimeNs
                           ? *run.exactCPUTimeNs
                           : ticksToNanoseconds(checkedAdd(stat.userTicks, stat.systemTicks));
    reading.readAt = readAt;
    record.memoryBytes = checkedMultiply(stat.residentPages, pageSize_);
    if (run.io) {
        record.diskReadBytes = run.io->readBytes;
        record.diskWrittenBytes = run.io->writeBytes;
    }
    record.threads = stat.threads;
    record.state = runStateFromProcLetter(stat.state);
    reading.command = stat.comm;
    return reading;
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
