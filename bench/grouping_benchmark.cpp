// Grouping, sorting and the policy run for every row on every refresh.
#include "core/control/process_policy.h"
#include "core/grouping/process_grouper.h"

#include <benchmark/benchmark.h>
#include <random>

namespace loadwarden {
namespace {

constexpr std::int32_t selfPID = 3;

// A busy desktop: apps with helper trees, the user's loose tools and the
// system's daemons, in pid order as the process list comes.
struct Machine {
    std::vector<LiveProcess> processes;
    AppNames appNames;
};

Machine machine(int count) {
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

void perThousandProcesses(benchmark::State& state, int count) {
    state.counters["per1000"] =
        benchmark::Counter(count / 1000.0, benchmark::Counter::kIsIterationInvariantRate |
                                               benchmark::Counter::kInvert);
}

void GroupAndSortByCPU(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Machine input = machine(count);
    for (auto _ : state) {
        auto groups = ProcessGrouper::sortGroups(
            ProcessGrouper::group(input.processes, input.appNames, selfPID), ProcessColumn::cpu,
            false);
        benchmark::DoNotOptimize(groups);
    }
    perThousandProcesses(state, count);
}
BENCHMARK(GroupAndSortByCPU)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);

void GroupAndSortByName(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Machine input = machine(count);
    for (auto _ : state) {
        auto groups = ProcessGrouper::sortGroups(
            ProcessGrouper::group(input.processes, input.appNames, selfPID), ProcessColumn::name,
            true);
        benchmark::DoNotOptimize(groups);
    }
    perThousandProcesses(state, count);
}
BENCHMARK(GroupAndSortByName)->Arg(5000)->Unit(benchmark::kMicrosecond);

// What the table asks of every row: each action's state and the targets.
void PolicyForEveryGroup(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Machine input = machine(count);
    const auto groups = ProcessGrouper::group(input.processes, input.appNames, selfPID);
    for (auto _ : state) {
        std::size_t allowed = 0;
        for (const ProcessGroup& group : groups) {
            for (const ProcessAction action : allCases<ProcessAction>()) {
                allowed += ProcessPolicy::offers(action, group, false) ? 1 : 0;
            }
            allowed += ProcessPolicy::signalTargets(group, selfPID).size();
        }
        benchmark::DoNotOptimize(allowed);
    }
    perThousandProcesses(state, count);
}
BENCHMARK(PolicyForEveryGroup)->Arg(5000)->Unit(benchmark::kMicrosecond);

void SearchEveryGroup(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const Machine input = machine(count);
    const auto groups = ProcessGrouper::group(input.processes, input.appNames, selfPID);
    for (auto _ : state) {
        auto shown = ProcessGrouper::filter(groups, "renderer 4");
        benchmark::DoNotOptimize(shown);
    }
    perThousandProcesses(state, count);
}
BENCHMARK(SearchEveryGroup)->Arg(5000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace loadwarden
