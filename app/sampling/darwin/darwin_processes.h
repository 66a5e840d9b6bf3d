#pragma once

#include "app/sampling/sampler_backend.h"

#include <sys/types.h>
#include <vector>

namespace loadwarden {

// Processes from the process-status tool, completed per tick by the kernel's
// BSD information, resource usage and task information.
class DarwinProcesses {
public:
    DarwinProcesses();

    // Every process, or none when the tool's run failed.
    std::vector<ProcessReading> read() const;
    ProcessFacts facts(const ProcessReading& process) const;

private:
    using ResponsibleFunction = pid_t (*)(pid_t);

    // The kernel's figures for a process the tool did not list (it started
    // after the tool ran); nothing when it is gone.
    std::optional<ProcessReading> fromKernel(pid_t pid) const;
    void addKernelFigures(ProcessReading& reading) const;
    Architecture architecture(pid_t pid) const;

    double timebase_;
    bool isARM_;
    ResponsibleFunction responsible_ = nullptr;
};

} // namespace loadwarden
