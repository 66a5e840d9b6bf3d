#pragma once

#include "app/sampler_backend.h"

#include <string>
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
    std::optional<ProcessReading> readOne(int pid);
    std::uint64_t cpuTimeNs(int pid, std::uint64_t ticks) const;

    Date bootTime_;
    double ticksPerSecond_;
    std::uint64_t pageSize_;
    std::string stat_; // buffers reused from process to process
    std::string status_;
    std::string io_;
};

} // namespace loadwarden
