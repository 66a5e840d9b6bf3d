#pragma once

#include "app/control/process_handle.h"
#include "core/control/cpu_limiter.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace loadwarden {

// Holds a group of processes near a share of one core on a thread of its
// own: every 100 ms it continues them, lets them run for the limiter's run
// share of the period, and stops them for the rest.
class LimitRunner {
public:
    // measured: the group's CPU percent now, if known.
    LimitRunner(std::vector<ProcessHandle> processes, double limit, std::optional<double> measured);
    ~LimitRunner(); // stops the thread if stop() was not called
    LimitRunner(const LimitRunner&) = delete;
    LimitRunner& operator=(const LimitRunner&) = delete;

    void start();

    // The group's processes now (helpers started since) and its measured CPU
    // percent. Processes already held keep their handles for the life of the
    // limit; any that left the group are continued and let go.
    void update(std::vector<ProcessHandle> processes, double measured);

    // Ends the thread and waits for it, so that whatever it did last (a stop
    // included) is done; the caller then continues the returned processes.
    std::vector<ProcessHandle> stop();

    double limit() const { return limit_; }
    CPULimiter limiter() const;

private:
    void run();

    const double limit_; // as the user asked
    mutable std::mutex lock_;
    std::condition_variable wake_;
    CPULimiter limiter_;
    std::vector<ProcessHandle> processes_;
    bool running_ = true;
    std::thread thread_;
};

// Names the calling thread "Loadwarden CPU limit" (as much of it as the
// system keeps) and gives it the highest priority that an unprivileged
// process may ask for, so the cycle keeps its beat on a busy machine.
void becomeLimitThread();

} // namespace loadwarden
