#include "app/control/limit_runner.h"

#include "core/control/signals.h"

#include <chrono>

namespace loadwarden {

namespace {

std::chrono::microseconds microseconds(Seconds seconds) {
    return std::chrono::microseconds(static_cast<long long>(seconds * 1e6));
}

} // namespace

LimitRunner::LimitRunner(std::vector<std::int32_t> pids, double limit,
                         std::optional<double> measured)
    : limit_(limit), limiter_(limit, measured), pids_(std::move(pids)) {}

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

void LimitRunner::update(std::vector<std::int32_t> pids, double measured) {
    const std::lock_guard guard(lock_);
    pids_ = std::move(pids);
    limiter_.adjust(measured);
}

std::vector<std::int32_t> LimitRunner::stop() {
    {
        const std::lock_guard guard(lock_);
        running_ = false;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
    const std::lock_guard guard(lock_);
    return pids_;
}

CPULimiter LimitRunner::limiter() const {
    const std::lock_guard guard(lock_);
    return limiter_;
}

void LimitRunner::run() {
    std::unique_lock guard(lock_);
    while (running_) {
        const std::vector<std::int32_t> pids = pids_;
        const CPULimiter limiter = limiter_;
        guard.unlock();
        Signals::resume(pids);
        guard.lock();
        // Sleeps end early when the runner is stopped.
        if (wake_.wait_for(guard, microseconds(limiter.runTime()), [this] { return !running_; })) {
            break;
        }
        if (limiter.stopTime() > CPULimiter::shortestStop) {
            guard.unlock();
            Signals::pause(pids);
            guard.lock();
            wake_.wait_for(guard, microseconds(limiter.stopTime()), [this] { return !running_; });
        }
    }
}

} // namespace loadwarden
