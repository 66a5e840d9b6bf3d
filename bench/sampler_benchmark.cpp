// The processor time of one full sampler tick, on the machine as it is and
// with 1,000 and 5,000 extra processes, beside one run of ps listing the same
// processes, and on Linux the graphics part of a tick alone. Figures are per
// iteration: cpu_ms is processor time (all of this program's threads for a
// tick, the child's own for ps), cpu_us_per_process the same divided by the
// processes seen. The extra processes sleep throughout, as most do; in
// BM_SamplerTickAllRan each has woken and run between two ticks, the most a
// tick can find to read.

#include "app/runner/spawn.h"
#include "app/sampling/sampler.h"
#ifdef __linux__
#include "app/sampling/linux/linux_graphics.h"
#include "app/sampling/linux/linux_processes.h"
#endif

#include <benchmark/benchmark.h>
#include <chrono>
#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace loadwarden {
namespace {

// Children that sleep until the benchmark is done with them; wakeEvery:
// how often each wakes for a moment, if at all.
class ExtraProcesses {
public:
    explicit ExtraProcesses(std::int64_t count, std::optional<useconds_t> wakeEvery = {}) {
        for (std::int64_t i = 0; i < count; ++i) {
            const pid_t pid = fork();
            if (pid == 0) {
#ifdef __linux__
                prctl(PR_SET_PDEATHSIG, SIGKILL); // never outlive a benchmark that crashed
#endif
                while (true) {
                    if (wakeEvery) {
                        usleep(*wakeEvery);
                    } else {
                        pause();
                    }
                }
            }
            if (pid > 0) {
                pids_.push_back(pid);
            }
        }
    }
    ~ExtraProcesses() {
        for (const pid_t pid : pids_) {
            kill(pid, SIGKILL);
        }
        for (const pid_t pid : pids_) {
            waitpid(pid, nullptr, 0);
        }
    }
    ExtraProcesses(const ExtraProcesses&) = delete;
    ExtraProcesses& operator=(const ExtraProcesses&) = delete;

private:
    std::vector<pid_t> pids_;
};

double ownCPUSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void report(benchmark::State& state, double cpuSeconds, std::size_t processes) {
    const double iterations = static_cast<double>(state.iterations());
    state.counters["cpu_ms"] = cpuSeconds * 1e3 / iterations;
    state.counters["processes"] = static_cast<double>(processes);
    state.counters["cpu_us_per_process"] =
        cpuSeconds * 1e6 / iterations / static_cast<double>(processes);
}

// Ticks `pause` apart, timed alone.
void measureTicks(benchmark::State& state, std::chrono::milliseconds pause) {
    Sampler sampler(makePlatformBackend(), nullptr, currentDate);
    // The first tick reads every process's lasting facts; later ones reuse them.
    sampler.sample(true, false, 1.0).get();
    double cpuSeconds = 0.0;
    std::size_t processes = 0;
    for (auto _ : state) {
        std::this_thread::sleep_for(pause);
        const double before = ownCPUSeconds();
        const Snapshot snapshot = sampler.sample(true, false, 1.0).get();
        cpuSeconds += ownCPUSeconds() - before;
        processes = snapshot.processes.size();
    }
    report(state, cpuSeconds, processes);
}

// Ticks a quarter of a second apart, nearer the program's own cadence than
// ticks back to back, whose every cache is still warm from the last.
constexpr std::chrono::milliseconds tickPause(250);

void BM_SamplerTick(benchmark::State& state) {
    const ExtraProcesses extra(state.range(0));
    measureTicks(state, tickPause);
}

void BM_SamplerTickAllRan(benchmark::State& state) {
    constexpr useconds_t wakeEvery = 200'000;
    const ExtraProcesses extra(state.range(0), wakeEvery);
    measureTicks(state, tickPause);
}

void BM_PsRun(benchmark::State& state) {
    const ExtraProcesses extra(state.range(0));
    double cpuSeconds = 0.0;
    std::size_t processes = 0;
    for (auto _ : state) {
        const auto result = Spawn::run(
            "/bin/ps", {"-axo", "pid=,ppid=,uid=,rss=,time=,state=,comm="}, 20.0, std::nullopt);
        if (!result) {
            state.SkipWithError("ps could not be run");
            return;
        }
        cpuSeconds += result->cpuSeconds;
        processes = static_cast<std::size_t>(
            std::count(result->output.begin(), result->output.end(), '\n'));
    }
    report(state, cpuSeconds, processes);
}

#ifdef __linux__
// What reading the graphics processors adds to a tick: the management
// library where it is installed, and the DRM clients of the processes that
// hold a graphics device.
void BM_GraphicsMeasure(benchmark::State& state) {
    const ExtraProcesses extra(state.range(0));
    LinuxProcesses reader;
    std::vector<ProcessReading> readings = reader.read();
    LinuxGraphics graphics;
    graphics.measure(readings); // the first pass looks for graphics devices once per process
    double cpuSeconds = 0.0;
    for (auto _ : state) {
        const double before = ownCPUSeconds();
        graphics.measure(readings);
        cpuSeconds += ownCPUSeconds() - before;
    }
    report(state, cpuSeconds, readings.size());
}
BENCHMARK(BM_GraphicsMeasure)->Arg(0)->Arg(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();
#endif

BENCHMARK(BM_SamplerTick)
    ->Arg(0)
    ->Arg(1000)
    ->Arg(5000)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_SamplerTickAllRan)
    ->Arg(1000)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(BM_PsRun)->Arg(0)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace loadwarden
