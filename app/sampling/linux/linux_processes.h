#pragma once

#include "app/sampling/linux/kernel_files.h"
#include "app/sampling/sampler_backend.h"

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
    // The files read on every tick, kept open while the process lives.
    struct OpenFiles {
        KeptFile stat;
        KeptFile io;
    };

    std::optional<ProcessReading> readOne(int pid, OpenFiles& files, bool keep);
    std::uint64_t cpuTimeNs(int pid, std::uint64_t ticks) const;

    double ticksPerSecond_;
    std::uint64_t pageSize_;
    std::size_t keepLimit_; // processes whose files may stay open
    std::unordered_map<int, OpenFiles> open_;
    std::string stat_; // buffers reused from process to process
    std::string io_;
};

} // namespace loadwarden
