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
    // writes nothing and changes no user.
    struct LastRun {
        std::uint64_t startTicks = 0;
        std::uint64_t cpuTimeNs = 0;
        std::uint32_t uid = 0;
        std::optional<ProcIO> io;
    };

    // One listed pid: its files, kept open while the process lives.
    struct Listed {
        KeptFile stat;
        KeptFile io;
        std::optional<LastRun> lastRun;
        std::uint64_t listing = 0; // the last listing that had the pid
    };

    std::optional<ProcessReading> readOne(int pid, Listed& listed, bool keep);
    std::optional<ProcIO> readIO(int pid, KeptFile& file, bool keep);
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
