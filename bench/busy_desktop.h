#pragma once

// A synthetic busy desktop for the benchmarks: apps with helper trees, the
// user's loose tools and the system's daemons, in pid order as the process
// list comes, the same for every run.

#include "core/grouping/process_grouper.h"

#include <benchmark/benchmark.h>
#include <random>
#include <string>
#include <vector>

namespace loadwarden::bench {

inline constexpr std::int32_t selfPID = 3;

struct Machine {
    std::vector<LiveProcess> processes;
    AppNames appNames;
};

inline Machine machine(int count) {
    std::mt19937 random(42);
    // A figure in tenths, below limit / 10.
    const auto tenths = [&random](unsigned limit) {
        return static_cast<double>(random() % limit) / 10.0;
    };
    Machine result;
    std::int32_t pid = 100;
    while (static_cast<int>(result.processes.size()) < count) {
        LiveProcess live;
        live.record.pid = pid;
        live.record.ppid = 1;
        live.record.responsiblePID = pid;
        live.record.isOwn = random() % 3 != 0;
        live.record.memoryBytes = random() % 2'000'000'000;
        live.record.state = RunState::sleeping;
        live.rates.cpuPercent = tenths(1000);
        if (random() % 2 == 0) {
            live.rates.energyWatts = tenths(100);
        }
        const int shape = static_cast<int>(random() % 10);
        if (shape < 2) {
            const std::string app = "App " + std::to_string(pid);
            live.record.name = app;
            live.record.path = "/Applications/" + app + ".app/Contents/MacOS/" + app;
            live.record.isOwn = true;
            result.appNames.emplace(pid, app);
            result.processes.push_back(live);
            // Its helpers, some in the bundle, some only below it.
            const std::int32_t appPID = pid;
            for (int helper = 0, helpers = static_cast<int>(random() % 12);
                 helper < helpers && static_cast<int>(result.processes.size()) < count; ++helper) {
                LiveProcess child = live;
                child.record.pid = ++pid;
                child.record.ppid = helper % 3 == 0 ? appPID : pid - 1;
                child.record.responsiblePID = pid;
                child.record.name = app + " Helper (Renderer) " + std::to_string(helper);
                child.record.path = helper % 2 == 0
                                        ? "/Applications/" + app + ".app/Contents/Frameworks/h"
                                        : "/usr/local/bin/worker";
                child.rates.cpuPercent = tenths(300);
                result.processes.push_back(child);
            }
        } else {
            live.record.name = (live.record.isOwn ? "tool" : "daemond") + std::to_string(pid);
            live.record.path =
                (live.record.isOwn ? "/usr/local/bin/" : "/usr/libexec/") + live.record.name;
            live.record.ppid = random() % 4 == 0 ? pid - 1 : 1;
            result.processes.push_back(live);
        }
        ++pid;
    }
    return result;
}

inline void perThousandProcesses(benchmark::State& state, int count) {
    state.counters["per1000"] =
        benchmark::Counter(count / 1000.0, benchmark::Counter::kIsIterationInvariantRate |
                                               benchmark::Counter::kInvert);
}

} // namespace loadwarden::bench
