// How closely a CPU limit holds a busy child to its target: a child with 1
// or 4 spinning threads, limited to 10, 25, 50 and 150 % of a core, corrected
// every 2 seconds from its measured use as the refresh loop does, settled for
// 10 seconds and then measured over 20. Counters: the mean use and its spread
// (standard deviation over the 2-second readings) in percent of a core, the
// mean's error against the target in percent of the target, and the limiter's
// own processor time per second.

#include "app/control/limit_runner.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <csignal>
#include <ctime>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace loadwarden {
namespace {

constexpr Seconds correctionInterval = 2.0;
constexpr int settlingReadings = 5;
constexpr int measuredReadings = 10;

// A child whose threads spin until it is killed.
pid_t spinningChild(int threads) {
    const pid_t pid = fork();
    if (pid == 0) {
        for (int i = 1; i < threads; ++i) {
            std::thread([] {
                while (true) {
                }
            }).detach();
        }
        while (true) {
        }
    }
    return pid;
}

Seconds cpuSecondsOf(pid_t pid) {
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &used) != 0) {
        return 0.0;
    }
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

Seconds ownCPUSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void BM_LimitAccuracy(benchmark::State& state) {
    const auto threads = static_cast<int>(state.range(0));
    const auto target = static_cast<double>(state.range(1));
    for (auto _ : state) {
        const pid_t child = spinningChild(threads);
        LimitRunner runner({child}, target, std::nullopt);
        runner.start();
        std::vector<double> readings;
        double limiterCPU = 0.0;
        for (int reading = 0; reading < settlingReadings + measuredReadings; ++reading) {
            const Seconds childBefore = cpuSecondsOf(child);
            const Seconds ownBefore = ownCPUSeconds();
            std::this_thread::sleep_for(std::chrono::duration<double>(correctionInterval));
            const double percent = (cpuSecondsOf(child) - childBefore) / correctionInterval * 100.0;
            runner.update({child}, percent);
            if (reading >= settlingReadings) {
                readings.push_back(percent);
                limiterCPU += ownCPUSeconds() - ownBefore;
            }
        }
        kill(child, SIGCONT);
        runner.stop();
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        double mean = 0.0;
        for (const double value : readings) {
            mean += value / static_cast<double>(readings.size());
        }
        double variance = 0.0;
        for (const double value : readings) {
            variance += (value - mean) * (value - mean) / static_cast<double>(readings.size());
        }
        state.counters["mean_percent"] = mean;
        state.counters["spread_percent"] = std::sqrt(variance);
        state.counters["error_of_target"] = (mean - target) / target * 100.0;
        state.counters["limiter_cpu_ms_per_s"] =
            limiterCPU * 1e3 / (measuredReadings * correctionInterval);
    }
}

BENCHMARK(BM_LimitAccuracy)
    ->ArgsProduct({{1, 4}, {10, 25, 50, 150}})
    ->ArgNames({"threads", "percent"})
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();

} // namespace
} // namespace loadwarden
