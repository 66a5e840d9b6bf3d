#pragma once

#include "app/control/process_start_time.h"
#include "core/control/signals.h"

#include <functional>
#include <optional>
#include <vector>

namespace loadwarden {

// When the process at a pid started, dated one of the program's two ways.
using StartTimeOf = std::function<std::optional<Date>(std::int32_t pid)>;

// One process, held so that its signals reach it and never a later process
// that takes its pid. Where the kernel gives process descriptors (Linux 5.3
// and later) the handle is one, checked once against the start time; elsewhere
// the start time is checked again right before every signal.
class ProcessHandle {
public:
    // The process at `pid` if it is the one that started at `started`;
    // nothing when it is gone, another process has the pid, or the pid is
    // below 2.
    static std::optional<ProcessHandle> open(std::int32_t pid, Date started,
                                             StartTimeOf startTimeOf = processStartDate);

    ProcessHandle(ProcessHandle&& other) noexcept;
    ProcessHandle& operator=(ProcessHandle&& other) noexcept;
    ProcessHandle(const ProcessHandle&) = delete;
    ProcessHandle& operator=(const ProcessHandle&) = delete;
    ~ProcessHandle();

    std::int32_t pid() const { return pid_; }
    // `gone` once the process has ended, whatever has its pid now.
    Signals::Outcome send(int signal) const;

private:
    ProcessHandle(std::int32_t pid, Date started, StartTimeOf startTimeOf, int descriptor);
    bool isStillTheProcess() const;

    std::int32_t pid_;
    Date started_;
    StartTimeOf startTimeOf_;
    int descriptor_; // -1 without one
};

// The signal to each process in turn; what became of each is not asked.
void sendEach(int signal, const std::vector<ProcessHandle>& processes);
std::vector<std::int32_t> pidsOf(const std::vector<ProcessHandle>& processes);

// The platform's process descriptors: -1 where there are none.
namespace ProcessDescriptor {
int open(std::int32_t pid);
void close(int descriptor);
} // namespace ProcessDescriptor

} // namespace loadwarden
