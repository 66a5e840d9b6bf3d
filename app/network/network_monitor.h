#pragma once

#include "app/foundation/clock.h"
#include "app/network/network_source.h"
#include "core/foundation/date.h"
#include "core/measurement/sampling_plan.h"
#include "core/network/network_backoff.h"
#include "core/network/network_rates.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

namespace loadwarden {

// Per-process network rates from an outside tool, run in the background no
// more often than the view needs and less often still when the tool proves
// costly. Rates come from the last two good runs and are withheld once stale.
// poke and the destructor belong to the owner's thread; the rest may be
// called from anywhere.
class NetworkMonitor {
public:
    // Until the first rates exist, runs come at least this often, so that
    // they appear soon whatever the view; the first come from the run that
    // starts this long after the first.
    static constexpr Seconds firstRatesGap = 6.0;

    struct ToolLimits {
        Seconds timeout = 15.0;
        Seconds cpuLimit = 1.0;
    };

    // This system's tool; without it the monitor never runs.
    NetworkMonitor();
    // clock: dates the end of each run, which is what rates are measured over.
    NetworkMonitor(std::unique_ptr<NetworkSource> source, ToolLimits limits,
                   Clock clock = currentDate);
    ~NetworkMonitor(); // waits for a run in progress
    NetworkMonitor(const NetworkMonitor&) = delete;
    NetworkMonitor& operator=(const NetworkMonitor&) = delete;

    // Starts a run in the background when one is due, and says whether it
    // did; returns at once.
    bool poke(const SamplingPlan& plan, Date now);
    std::optional<MeasuredNetworkRates> rates(const SamplingPlan& plan, Date now) const;

    // The program's own cost: runs that produced a result, and their CPU time.
    int runs() const;
    double totalCPU() const;
    bool available() const { return source_ != nullptr; }
    // What the figures leave out on this system, to show beside them.
    std::string_view coverageNote() const;

private:
    void runOnce();
    Seconds gap(const SamplingPlan& plan) const;

    const std::unique_ptr<NetworkSource> source_;
    const ToolLimits limits_;
    const Clock clock_;

    mutable std::mutex lock_;
    bool running_ = false;
    std::optional<Date> lastStart_;
    std::optional<std::pair<Date, NetworkSample>> previous_;
    std::optional<std::pair<Date, MeasuredNetworkRates>> latest_;
    NetworkBackoff backoff_;
    int runs_ = 0;
    double totalCPU_ = 0.0;

    std::thread worker_; // only poke and the destructor touch it
};

} // namespace loadwarden
