#include "shell/readings.h"

#include "app/sampling/sampler.h"

#include <chrono>
#include <thread>

namespace loadwarden {

Readings takeReadings(int ticks, Seconds interval, bool networkShown) {
    using Steady = std::chrono::steady_clock;
    // Network rates come once a run of the tool that starts at the first-rates
    // gap has ended, so from the tick after it: over a shorter span the tool
    // would run for nothing.
    const bool networkMeasured =
        networkShown && (ticks - 2) * interval >= NetworkMonitor::firstRatesGap;
    Sampler sampler(makePlatformBackend(), networkMeasured ? systemNetworkSource() : nullptr,
                    currentDate);
    const auto first = Steady::now();
    const auto period = std::chrono::duration<double>(interval);
    Readings readings{.last = {},
                      .networkCoverageNote = std::string(sampler.networkCoverageNote())};
    for (int tick = 0; tick < ticks; ++tick) {
        std::this_thread::sleep_until(first +
                                      std::chrono::duration_cast<Steady::duration>(period * tick));
        readings.last = sampler.sample(true, networkShown, interval).get();
    }
    return readings;
}

} // namespace loadwarden
