// Grouping, sorting and the policy run for every row on every refresh.
#include "bench/busy_desktop.h"
#include "core/control/process_policy.h"

namespace loadwarden {
namespace {

using bench::machine;
using bench::Machine;
using bench::perThousandProcesses;
using bench::selfPID;

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
