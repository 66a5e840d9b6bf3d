#include "app/control/limit_runner.h"

#include <algorithm>
#include <chrono>
#include <csignal>

namespace loadwarden {

namespace {

std::chrono::microseconds microseconds(Seconds seconds) {
    return std::chrono::microseconds(static_cast<long long>(seconds * 1e6));
}

} // namespace

LimitRunner::LimitRunner(std::vector<ProcessHandle> processes, double limit,
                         std::optional<double> measured)
    : limit_(limit), limiter_(limit, measured), processes_(std::move(processes)) {}

LimitRunner::~LimitRunner() {
    if (thread_.joinable()) {
        stop();
    }
}

void LimitRunner::start() {
    thread_ = std::thread([this] {
        becomeLimitThread();
        run();
    });
}

void LimitRunner::update(std::vector<ProcessHandle> processes, double measured) {
    const std::lock_guard guard(lock_);
    for (ProcessHandle& held : processes_) {
        const auto fresh =
            std::find_if(processes.begin(), processes.end(),
                         [&held](const ProcessHandle& each) { return each.pid() == held.pid(); });
        if (fresh != processes.end()) {
            *fresh = std::move(held);
        } else {
            held.send(SIGCONT);
        }
    }
    processes_ = std::move(processes);
    limiter_.adjust(measured);
}

std::vector<ProcessHandle> LimitRunner::stop() {
    {
        const std::lock_guard guard(lock_);
        running_ = false;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
    const std::lock_guard guard(lock_);
    return std::move(processes_);
}

CPULimiter LimitRunner::limiter() const {
    const std::lock_guard guard(lock_);
    return limiter_;
}

void LimitRunner::run() {
    std::unique_lock guard(lock_);
    while (running_) {
        const CPULimiter limiter = limiter_;
        sendEach(SIGCONT, processes_);
        // Sleeps end early when the runner is stopped.
        if (wake_.wait_for(guard, microseconds(limiter.runTime()), [this] { return !running_; })) {
            break;
        }
        if (limiter.stopTime() > CPULimiter::shortestStop) {
            sendEach(SIGSTOP, processes_);
            wake_.wait_for(guard, microseconds(limiter.stopTime()), [this] { return !running_; });
        }
    }
}

} // namespace loadwarden
