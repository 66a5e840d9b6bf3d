#pragma once

#include "app/sampling/linux/kernel_files.h"
#include "app/sampling/linux/process_directory.h"
#include "app/sampling/sampler_backend.h"
#include "core/measurement/linux/process_files.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace loadwarden {

// Processes from /proc, read as an unprivileged user: what the kernel keeps
// from us (another user's disk bytes and executable) stays absent. Kernel
// threads are left out: they are not programs anyone looks for.
class LinuxProcesses {
public:
    LinuxProcesses();

    std::vector<ProcessReading> read();
    ProcessFacts facts(const ProcessReading& process) const;

private:
    // What a process showed when it last ran, kept for as long as its
    // processor time stands still: a process that runs no code reads and
    // writes nothing and changes neither its user, name, state nor threads.
    // Its memory can change all the same (the system reclaims it) and so can
    // its parent (when the parent ends), so those are read on every listing.
    struct LastRun {
        ProcStat stat;
        std::optional<std::uint64_t> exactCPUTimeNs; // absent: only stat's ticks were read
        std::uint32_t uid = 0;
        std::optional<ProcIO> io;
        std::optional<std::uint64_t> parentStartTicks; // of stat.ppid, once looked up
    };

    // One listed process, known by its folder: its files, kept open while it
    // lives (its stat while it runs, its statm while it stands still, its io).
    struct Listed {
        std::uint64_t inode = 0;
        bool kernelThread = false;
        KeptFile stat;
        KeptFile statm;
        KeptFile io;
        std::optional<LastRun> lastRun;
        bool stillThisListing = false;
        std::uint64_t listing = 0; // the last listing that had the pid
    };

    std::optional<ProcessReading> readOne(int pid, Listed& listed, bool keep);
    bool readInFull(int pid, Listed& listed, std::optional<std::uint64_t> exactCPUTime,
                    bool keep);
    bool readMemory(int pid, Listed& listed, bool keep);
    void checkParents(std::vector<ProcessReading>& readings, bool keep);
    bool parentStands(const LastRun& child) const;
    std::optional<std::uint64_t> startTicksOf(int pid) const;
    ProcessReading readingOf(int pid, const LastRun& run, Seconds readAt) const;
    std::uint64_t ticksToNanoseconds(std::uint64_t ticks) const;

    double ticksPerSecond_;
    std::uint64_t pageSize_;
    std::size_t keepLimit_; // processes whose files may stay open
    ProcessDirectory directory_;
    std::unordered_map<int, Listed> listed_;
    std::uint64_t listing_ = 0;
    std::size_t lastCount_ = 0;
    std::string buffer_; // reused from file to file
};

} // namespace loadwarden
