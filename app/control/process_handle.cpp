#include "app/control/process_handle.h"

#include <utility>

namespace loadwarden {

std::optional<ProcessHandle> ProcessHandle::open(std::int32_t pid, Date started,
                                                 StartTimeOf startTimeOf) {
    if (pid < 2) {
        return std::nullopt;
    }
    // Once open, a descriptor holds on to the process it names: if the start
    // time read after opening is the one expected, it names that process.
    ProcessHandle handle(pid, started, std::move(startTimeOf), ProcessDescriptor::open(pid));
    if (!handle.isStillTheProcess()) {
        return std::nullopt;
    }
    return handle;
}

ProcessHandle::ProcessHandle(std::int32_t pid, Date started, StartTimeOf startTimeOf,
                             int descriptor)
    : pid_(pid), started_(started), startTimeOf_(std::move(startTimeOf)), descriptor_(descriptor) {}

ProcessHandle::ProcessHandle(ProcessHandle&& other) noexcept
    : pid_(other.pid_), started_(other.started_), startTimeOf_(std::move(other.startTimeOf_)),
      descriptor_(std::exchange(other.descriptor_, -1)) {}

ProcessHandle& ProcessHandle::operator=(ProcessHandle&& other) noexcept {
    if (this != &other) {
        ProcessDescriptor::close(descriptor_);
        pid_ = other.pid_;
        started_ = other.started_;
        startTimeOf_ = std::move(other.startTimeOf_);
        descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
}

ProcessHandle::~ProcessHandle() {
    ProcessDescriptor::close(descriptor_);
}

bool ProcessHandle::isStillTheProcess() const {
    return startTimeOf_(pid_) == started_;
}

Signals::Outcome ProcessHandle::send(int signal) const {
    if (descriptor_ >= 0) {
        return Signals::sendThrough(signal, descriptor_, pid_);
    }
    if (!isStillTheProcess()) {
        return {.kind = Signals::Outcome::Kind::gone};
    }
    return Signals::send(signal, pid_);
}

void sendEach(int signal, const std::vector<ProcessHandle>& processes) {
    for (const ProcessHandle& process : processes) {
        process.send(signal);
    }
}

std::vector<std::int32_t> pidsOf(const std::vector<ProcessHandle>& processes) {
    std::vector<std::int32_t> pids;
    pids.reserve(processes.size());
    for (const ProcessHandle& process : processes) {
        pids.push_back(process.pid());
    }
    return pids;
}

} // namespace loadwarden
